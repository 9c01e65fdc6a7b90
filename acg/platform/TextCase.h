// Case conversion independent of the user's locale: every letter that has the other case, one character for
// one.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace acg
{

void MakeUpper(std::wstring& text);
void MakeLower(std::wstring& text);

[[nodiscard]] inline std::wstring ToLower(std::wstring_view text)
{
    std::wstring lower(text);
    MakeLower(lower);
    return lower;
}

// Of ASCII alone; any other character is unchanged.
template <class Char>
[[nodiscard]] constexpr Char AsciiToUpper(Char character)
{
    const bool isLower = character >= Char{'a'} && character <= Char{'z'};
    return static_cast<Char>(isLower ? character - ('a' - 'A') : character);
}
template <class Char>
[[nodiscard]] constexpr Char AsciiToLower(Char character)
{
    const bool isUpper = character >= Char{'A'} && character <= Char{'Z'};
    return static_cast<Char>(isUpper ? character + ('a' - 'A') : character);
}
[[nodiscard]] constexpr bool IsSameInAsciiCase(std::string_view one, std::string_view other)
{
    return std::ranges::equal(one, other, {}, AsciiToLower<char>, AsciiToLower<char>);
}

} // namespace acg
