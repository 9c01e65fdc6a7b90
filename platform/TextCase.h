// Case changes that no user's locale decides.
#pragma once

#include <string>

namespace acg
{

/// The other case of a letter beyond ASCII, one character for one, as the system knows it; any other
/// character stays as it is.
[[nodiscard]] wchar_t SystemToUpper(wchar_t Character);
[[nodiscard]] wchar_t SystemToLower(wchar_t Character);

[[nodiscard]] inline wchar_t ToUpper(wchar_t Character)
{
    constexpr wchar_t Distance = L'a' - L'A';
    if (Character < 0x80) {
        const bool isLower = Character >= L'a' && Character <= L'z';
        return static_cast<wchar_t>(isLower ? Character - Distance : Character);
    }
    return SystemToUpper(Character);
}

[[nodiscard]] inline wchar_t ToLower(wchar_t Character)
{
    constexpr wchar_t Distance = L'a' - L'A';
    if (Character < 0x80) {
        const bool isUpper = Character >= L'A' && Character <= L'Z';
        return static_cast<wchar_t>(isUpper ? Character + Distance : Character);
    }
    return SystemToLower(Character);
}

inline void MakeUpper(std::wstring& Text)
{
    for (wchar_t& character : Text) {
        character = ToUpper(character);
    }
}

inline void MakeLower(std::wstring& Text)
{
    for (wchar_t& character : Text) {
        character = ToLower(character);
    }
}

[[nodiscard]] inline std::wstring ToLower(std::wstring Text)
{
    MakeLower(Text);
    return Text;
}

} // namespace acg
