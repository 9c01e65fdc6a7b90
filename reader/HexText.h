// Hexadecimal text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace acg
{

/// Lets a test of hexadecimal text pass whatever the number of digits.
inline constexpr int32_t AnyLength = -1;

/// Makes the text upper case and removes the blanks (U+0020) at both ends, whatever the result; true if it
/// then has Length characters, each a digit. Empty text passes with AnyLength and with 0.
[[nodiscard]] bool IsHexString(std::wstring& Text, int32_t Length);

/// The low byte as two upper-case digits: 9 gives "09", 256 gives "00", -1 gives "FF".
[[nodiscard]] std::wstring TwoHexDigits(int32_t Value);

/// All 32 bits as eight upper-case digits, the most significant first: -1 gives "FFFFFFFF".
[[nodiscard]] std::wstring EightHexDigits(int32_t Value);

/// The value of a hexadecimal digit in either case; nothing for any other character.
[[nodiscard]] std::optional<int> HexDigit(wchar_t Character);

/// The number that the text begins with; 0 where it begins with no digit. Of more than eight digits the last
/// eight count.
[[nodiscard]] uint32_t ReadHexDigits(std::wstring_view Text);

} // namespace acg
