#include "tool/Text.h"

#include "acg/platform/HexText.h"
#include "acg/platform/Process.h"
#include "tool/Failures.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <type_traits>

namespace acg::tool
{

namespace
{

// A path converts these from and to UTF-8 in any locale; wchar_t by the locale.
using WideUnit = std::conditional_t<sizeof(wchar_t) == sizeof(char16_t), char16_t, char32_t>;

bool IsOfWord(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return std::isalnum(byte) != 0 || byte >= 0x80;
}

bool IsOfSpacedDigits(char character)
{
    return IsHexDigit(character) || character == ' ' || character == ':' || character == '-';
}

/// Masks each run of such characters that has enough digits for a key. A run doesn't begin inside a word.
void MaskRuns(std::string& text, bool (*isOfRun)(char))
{
    constexpr std::ptrdiff_t LeastDigits = 10;
    for (auto from = text.begin(); from != text.end();) {
        from = std::find_if(from, text.end(), isOfRun);
        if (from != text.begin() && IsOfWord(*(from - 1))) {
            from = std::find_if_not(from, text.end(), IsOfWord);
        }
        const auto end = std::find_if_not(from, text.end(), isOfRun);
        if (std::count_if(from, end, IsHexDigit) >= LeastDigits) {
            std::replace_if(from, end, IsHexDigit, '*');
        }
        from = end;
    }
}

} // namespace

std::string Printable(std::string_view text)
{
    const bool isUtf8 = IsUtf8(text);
    std::string shown;
    for (size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        // The control characters from U+0080 to U+009F are two bytes.
        const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : '\0');
        if (isUtf8 && byte == 0xC2 && next < 0xA0) {
            shown += Format("\\x%02x", next);
            ++at;
        } else if (byte < 0x20 || byte == 0x7F || (!isUtf8 && byte >= 0x80)) {
            shown += Format("\\x%02x", byte);
        } else {
            shown += text[at];
        }
    }
    return shown;
}

std::string MaskKeys(std::string_view text)
{
    std::string masked(text);
    MaskRuns(masked, IsOfSpacedDigits);
    MaskRuns(masked, IsOfWord);
    return masked;
}

std::vector<std::string_view> Split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (size_t at = 0; at <= text.size(); at += parts.back().size() + 1) {
        parts.push_back(text.substr(at, text.find(separator, at) - at));
    }
    return parts;
}

std::string Wrap(std::string_view text, size_t indent)
{
    constexpr size_t Columns = 80;
    std::string wrapped;
    for (std::string_view rest = text;;) {
        size_t end = rest.size();
        if (indent + end > Columns) {
            const size_t blank = rest.rfind(' ', Columns - indent);
            end = blank != std::string_view::npos ? blank : std::min(rest.find(' '), end);
        }
        wrapped += rest.substr(0, end);
        if (end == rest.size()) {
            return wrapped;
        }
        rest.remove_prefix(end + 1);
        wrapped += '\n' + std::string(indent, ' ');
    }
}

std::wstring ToWide(std::string_view text)
{
    try {
        const auto wide = ToPath(text).string<WideUnit>();
        return {wide.begin(), wide.end()};
    } catch (const std::system_error&) {
        throw UsageError{"an argument isn't UTF-8"};
    }
}

std::string ToUtf8(std::wstring_view text)
{
    const std::basic_string<WideUnit> wide(text.begin(), text.end());
    const std::u8string bytes = std::filesystem::path(wide).u8string();
    return {bytes.begin(), bytes.end()};
}

std::filesystem::path ToPath(std::string_view text)
{
    return {std::u8string(text.begin(), text.end())};
}

std::optional<std::string> ReadFile(const std::filesystem::path& path, size_t most)
{
    std::ifstream file(path, std::ios::binary);
    std::string bytes(most, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(most));
    bytes.resize(static_cast<size_t>(file.gcount()));
    return file.is_open() && !file.bad() ? std::optional(std::move(bytes)) : std::nullopt;
}

bool IsUtf8(std::string_view text)
{
    try {
        static_cast<void>(ToWide(text));
        return true;
    } catch (const UsageError&) {
        return false;
    }
}

std::string ReadTextFile(const std::string& name, std::string_view kind, size_t most)
{
    const std::filesystem::path path = ToPath(name);
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status)) {
        throw UsageError{name + " is a folder, not a file"};
    }
    if (!std::filesystem::exists(status)) {
        throw UsageError{"there is no file " + name};
    }
    std::optional<std::string> contents = ReadFile(path, most);
    if (!contents) {
        throw UsageError{"can't read " + name};
    }
    const std::string& bytes = *contents;
    if (bytes.size() == most) {
        throw UsageError{name + " is too long for a " + std::string(kind)};
    }
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF") ||
        (bytes.size() > 1 && (bytes[0] == '\0') != (bytes[1] == '\0'))) {
        throw UsageError{name + " is UTF-16; save it as UTF-8"};
    }
    return *std::move(contents);
}

std::optional<std::string> Variable(const char* name)
{
    const SystemPath value = EnvironmentVariable(name);
    return value.empty() ? std::nullopt : std::optional(Utf8Of(value));
}

std::string Format(const char* pattern, ...)
{
    std::va_list arguments; // NOLINT(cppcoreguidelines-init-variables)
    va_start(arguments, pattern);
    std::va_list again; // NOLINT(cppcoreguidelines-init-variables)
    va_copy(again, arguments);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start has initialised it
    const int length = std::vsnprintf(nullptr, 0, pattern, arguments);
    std::string text(static_cast<size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, pattern, again);
    va_end(again);
    va_end(arguments);
    return text;
}

int32_t ParseNumber(std::string_view text, int32_t least, int32_t most, std::string_view problem)
{
    int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) {
        throw UsageError{std::string(problem)};
    }
    return number;
}

std::pair<int32_t, int32_t> ParseRange(std::string_view text, int32_t (*parse)(std::string_view))
{
    const size_t sign = text.find('-', 1);
    const int32_t first = parse(text.substr(0, sign));
    const int32_t last = sign == std::string_view::npos ? first : parse(text.substr(sign + 1));
    if (last < first) {
        throw UsageError{std::string(text) + " ends before it begins; a range is as in 4-6"};
    }
    return {first, last};
}

} // namespace acg::tool
