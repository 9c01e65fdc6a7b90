// Case conversion independent of the user's locale: every letter that has the other case, one character for
// one.
#pragma once

#include <string>
#include <string_view>

namespace acg
{

void MakeUpper(std::wstring& Text);
void MakeLower(std::wstring& Text);

[[nodiscard]] inline std::wstring ToLower(std::wstring_view Text)
{
    std::wstring lower(Text);
    MakeLower(lower);
    return lower;
}

// Of ASCII alone; any other character is unchanged.
[[nodiscard]] constexpr wchar_t AsciiToUpper(wchar_t Character)
{
    const bool isLower = Character >= L'a' && Character <= L'z';
    return static_cast<wchar_t>(isLower ? Character - (L'a' - L'A') : Character);
}
[[nodiscard]] constexpr wchar_t AsciiToLower(wchar_t Character)
{
    const bool isUpper = Character >= L'A' && Character <= L'Z';
    return static_cast<wchar_t>(isUpper ? Character + (L'a' - L'A') : Character);
}

} // namespace acg
