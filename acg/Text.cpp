#include "acg/Text.h"

#include "acg/Failures.h"

#include <charconv>
#include <cstdarg>
#include <cstdio>

namespace acg::tool
{

// A path converts between the two on every system, and changes nothing else.
std::wstring ToWide(std::string_view Text)
{
    return ToPath(Text).wstring();
}

std::string ToUtf8(std::wstring_view Text)
{
    const std::u8string bytes = std::filesystem::path(Text).u8string();
    return {bytes.begin(), bytes.end()};
}

std::filesystem::path ToPath(std::string_view Text)
{
    return {std::u8string(Text.begin(), Text.end())};
}

std::string Format(const char* Pattern, ...)
{
    std::va_list arguments; // NOLINT(cppcoreguidelines-init-variables)
    va_start(arguments, Pattern);
    std::va_list again; // NOLINT(cppcoreguidelines-init-variables)
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, Pattern, arguments);
    std::string text(static_cast<size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, Pattern, again);
    va_end(again);
    va_end(arguments);
    return text;
}

int32_t ParseNumber(std::string_view Text, int32_t Least, int32_t Most, std::string_view What)
{
    int32_t number = 0;
    const auto [end, error] = std::from_chars(Text.data(), Text.data() + Text.size(), number);
    if (error != std::errc() || end != Text.data() + Text.size() || number < Least || number > Most) {
        throw UsageError{std::string(What)};
    }
    return number;
}

} // namespace acg::tool
