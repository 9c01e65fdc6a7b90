// Hexadecimal text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace acg
{

/// The text without the blanks (U+0020), and nothing else, at both ends.
[[nodiscard]] std::wstring_view TrimBlanks(std::wstring_view Text);

/// True for Length hexadecimal digits in either case, with blanks around them or none.
[[nodiscard]] bool AreHexDigits(std::wstring_view Text, size_t Length);

/// Converts the text to upper case and removes the blanks at both ends, whatever the result; true if it is
/// then Length digits.
[[nodiscard]] bool IsHexString(std::wstring& Text, size_t Length);

inline constexpr char HexDigits[] = "0123456789ABCDEF";

/// The low byte as two upper-case digits: 9 is "09", 256 is "00", -1 is "FF".
[[nodiscard]] std::wstring TwoHexDigits(int32_t Value);

/// The value of a hexadecimal digit in either case; nothing for any other character.
[[nodiscard]] constexpr std::optional<int> HexDigit(wchar_t Character)
{
    if (Character >= L'0' && Character <= L'9') {
        return Character - L'0';
    }
    constexpr int Ten = 10;
    if (Character >= L'A' && Character <= L'F') {
        return Character - L'A' + Ten;
    }
    if (Character >= L'a' && Character <= L'f') {
        return Character - L'a' + Ten;
    }
    return std::nullopt;
}

/// The number that the text begins with; 0 where it begins with no digit. Of more than eight digits the last
/// eight count.
[[nodiscard]] uint32_t ReadHexDigits(std::wstring_view Text);

} // namespace acg
