#include "tool/Keys.h"

#include "acg/platform/HexText.h"
#include "acg/platform/TextCase.h"
#include "tool/Failures.h"
#include "tool/System.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

/// Of a line of a file of keys: ", " and the comment, if it has one. What may be a key is masked.
std::string CommentIn(std::string_view line)
{
    line.remove_prefix(std::min(line.find('#'), line.size()));
    const size_t from = line.find_first_not_of("# \t\r");
    if (from == std::string_view::npos) {
        return {};
    }
    line = line.substr(from, line.find_last_not_of(" \t\r") + 1 - from);
    return ", " + Printable(MaskKeys(line));
}

std::string PlaceInFile(size_t at)
{
    return Format("key %d of the file", static_cast<int>(at) + 1);
}

/// The text has all digits of a key, whatever stands between its bytes.
bool ShowsKey(const std::string& text, const KeyRing& keys)
{
    std::string digits;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '0' && at + 1 < text.size() && AsciiToLower(text[at + 1]) == 'x') {
            ++at; // "0x"
        } else if (HexDigit(text[at])) {
            digits += AsciiToUpper(text[at]);
        }
    }
    return std::ranges::any_of(
        keys, [&](const NamedKey& key) { return digits.find(ToHex(key.Bytes)) != std::string::npos; });
}

} // namespace

Key ParseKey(std::string_view text, std::string_view what)
{
    // Not by FromHex, whose memory isn't wiped.
    Key key;
    const size_t from = std::min(text.find_first_not_of(' '), text.size());
    const std::string_view digits = text.substr(from, text.find_last_not_of(' ') + 1 - from);
    bool isKey = digits.size() == 2 * key.size();
    for (size_t at = 0; isKey && at < digits.size(); ++at) {
        const std::optional<int> digit = HexDigit(digits[at]);
        isKey = digit.has_value();
        key[at / 2] = static_cast<uint8_t>(key[at / 2] << 4 | digit.value_or(0));
    }
    if (!isKey) {
        throw UsageError{std::string(what) + " isn't 12 hexadecimal digits"};
    }
    return key;
}

std::optional<Key> KeyFromOption(const std::string& text, const char* option, const char* variable)
{
    if (!text.empty()) {
        return ParseKey(text, option);
    }
    if (const auto key = Variable(variable)) {
        return ParseKey(*key, Format("the key in %s", variable));
    }
    return std::nullopt;
}

LoginKey ReadLoginKey(const KeyOptions& options)
{
    const uint8_t type = options.AsB ? KeyTypeB : KeyTypeA;
    if (!options.File.empty()) { // --key isn't given
        return {ReadKeys(options.File).front().Bytes, type};
    }
    if (const auto key = KeyFromOption(options.Text, "--key", "ACG_KEY")) {
        return {*key, type};
    }
    throw UsageError{"a key is required: --key, --key-file, or the variable ACG_KEY"};
}

KeyRing ReadKeys(const std::string& file)
{
    constexpr size_t MaxSize = 1 << 20;
    const std::string bytes = ReadTextFile(file, "file of keys", MaxSize);
    std::string_view text = bytes;
    text.remove_prefix(text.starts_with(Utf8Mark) ? Utf8Mark.size() : 0);
    KeyRing keys;
    int number = 0;
    for (const std::string_view line : Split(text, '\n')) {
        ++number;
        std::string key(line.substr(0, line.find('#')));
        std::ranges::replace_if(
            key, [](char blank) { return blank == '\t' || blank == '\r'; }, ' ');
        if (key.find_first_not_of(' ') != std::string::npos) {
            keys.push_back({ParseKey(key, Format("%s, line %d", file.c_str(), number)),
                            PlaceInFile(keys.size()) + CommentIn(line)});
        }
    }
    if (std::ranges::any_of(keys, [&](const NamedKey& key) { return ShowsKey(key.Name, keys); })) {
        for (size_t at = 0; at < keys.size(); ++at) {
            keys[at].Name = PlaceInFile(at);
        }
    }
    if (keys.empty()) {
        throw UsageError{file + " has no key"};
    }
    return keys;
}

KeyRing ReadKeyRing(const KeyOptions& options)
{
    if (!options.File.empty()) {
        return ReadKeys(options.File);
    }
    if (const auto key = KeyFromOption(options.Text, "--key", "ACG_KEY")) {
        return {{*key, "the key"}};
    }
    return {{ParseKey("FFFFFFFFFFFF", {}), "the factory's key"}};
}

} // namespace acg::tool
