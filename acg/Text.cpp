#include "acg/Text.h"

#include "acg/Failures.h"

#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <system_error>
#include <type_traits>

namespace acg::tool
{

namespace
{

// A path converts these from and to UTF-8 whatever the locale, which wchar_t isn't.
using WideUnit = std::conditional_t<sizeof(wchar_t) == sizeof(char16_t), char16_t, char32_t>;

} // namespace

std::wstring ToWide(std::string_view Text)
{
    try {
        const auto wide = ToPath(Text).string<WideUnit>();
        return {wide.begin(), wide.end()};
    } catch (const std::system_error&) {
        throw UsageError{"an argument isn't UTF-8"};
    }
}

std::string ToUtf8(std::wstring_view Text)
{
    const std::basic_string<WideUnit> wide(Text.begin(), Text.end());
    const std::u8string bytes = std::filesystem::path(wide).u8string();
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
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start has initialised it
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
