#include "acg/Keys.h"

#include "acg/Failures.h"
#include "acg/System.h"
#include "acg/Text.h"
#include "reader/HexText.h"

#include <fstream>

namespace acg::tool
{

std::wstring ParseKey(std::string_view Text, std::string_view What)
{
    constexpr size_t KeyDigits = 12;
    std::wstring digits(Text.begin(), Text.end()); // whatever isn't a digit won't pass
    if (!IsHexString(digits, KeyDigits)) {
        throw UsageError{std::string(What) + " isn't 12 hexadecimal digits"};
    }
    return digits;
}

Key TheKey(const KeyOptions& Options)
{
    const uint8_t type = Options.AsB ? KeyTypeB : KeyTypeA;
    if (!Options.Text.empty()) {
        return {ParseKey(Options.Text, "--key"), type};
    }
    if (!Options.File.empty()) {
        return {ReadKeys(Options.File).front(), type};
    }
    if (const auto key = EnvironmentVariable("ACG_KEY")) {
        return {ParseKey(*key, "the key in ACG_KEY"), type};
    }
    throw UsageError{"a key is required: --key, --key-file, or the variable ACG_KEY"};
}

bool IsKeyGiven(const KeyOptions& Options)
{
    return !Options.Text.empty() || !Options.File.empty() || EnvironmentVariable("ACG_KEY");
}

std::vector<std::wstring> ReadKeys(const std::string& File)
{
    std::ifstream file(ToPath(File));
    std::vector<std::wstring> keys;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        if (!line.empty() && line.front() != '#') {
            keys.push_back(ParseKey(line, Format("%s, line %d", File.c_str(), number)));
        }
    }
    if (keys.empty()) {
        throw UsageError{file.is_open() ? File + " has no key" : "can't read " + File};
    }
    return keys;
}

} // namespace acg::tool
