// Hexadecimal text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace acg
{

/// The value of a hexadecimal digit in either case; nothing for any other character.
template <class Char>
[[nodiscard]] constexpr std::optional<int> HexDigit(Char character)
{
    if (character >= Char{'0'} && character <= Char{'9'}) {
        return character - Char{'0'};
    }
    constexpr int Ten = 10;
    if (character >= Char{'A'} && character <= Char{'F'}) {
        return character - Char{'A'} + Ten;
    }
    if (character >= Char{'a'} && character <= Char{'f'}) {
        return character - Char{'a'} + Ten;
    }
    return std::nullopt;
}

[[nodiscard]] constexpr bool IsHexDigit(char character)
{
    return HexDigit(character).has_value();
}

/// Upper-case digits, two a byte.
[[nodiscard]] std::string ToHex(std::span<const uint8_t> bytes);

/// Digits of either case, two a byte. Nothing if the text isn't whole bytes in hexadecimal digits.
[[nodiscard]] std::optional<std::vector<uint8_t>> FromHex(std::string_view text);

inline constexpr char HexDigits[] = "0123456789ABCDEF";

/// The low byte as two upper-case digits: 9 is "09", 256 is "00", -1 is "FF".
[[nodiscard]] std::wstring TwoHexDigits(int32_t value);

/// The number that the text begins with; 0 if it begins with no digit. Of more than eight digits the last
/// eight count.
template <class Char>
[[nodiscard]] constexpr uint32_t ReadHexDigits(std::basic_string_view<Char> text)
{
    uint32_t number = 0;
    for (const Char character : text) {
        const std::optional<int> digit = HexDigit(character);
        if (!digit) {
            break;
        }
        number = number << 4 | static_cast<uint32_t>(*digit);
    }
    return number;
}

/// The text without the blanks (U+0020), and nothing else, at both ends.
[[nodiscard]] std::wstring_view TrimBlanks(std::wstring_view text);

/// True for `length` hexadecimal digits in either case, with blanks around them or none.
[[nodiscard]] bool AreHexDigits(std::wstring_view text, size_t length);

/// Converts the text to upper case and removes the blanks at both ends, whatever the result; true if it is
/// then `length` digits.
[[nodiscard]] bool IsHexString(std::wstring& text, size_t length);

} // namespace acg
