#include "acg/platform/HexText.h"

#include "acg/platform/TextCase.h"

#include <algorithm>

namespace acg
{

std::string ToHex(std::span<const uint8_t> bytes)
{
    std::string text;
    for (const uint8_t byte : bytes) {
        text += {HexDigits[byte >> 4], HexDigits[byte & 0x0F]};
    }
    return text;
}

std::optional<std::vector<uint8_t>> FromHex(std::string_view text)
{
    if (text.size() % 2 != 0) {
        return std::nullopt;
    }
    std::vector<uint8_t> bytes(text.size() / 2);
    for (size_t at = 0; at < text.size(); ++at) {
        const std::optional<int> digit = HexDigit(text[at]);
        if (!digit) {
            return std::nullopt;
        }
        bytes[at / 2] = static_cast<uint8_t>(bytes[at / 2] << 4 | *digit);
    }
    return bytes;
}

std::wstring TwoHexDigits(int32_t value)
{
    const auto byte = static_cast<uint8_t>(value);
    return {static_cast<wchar_t>(HexDigits[byte >> 4]), static_cast<wchar_t>(HexDigits[byte & 0x0F])};
}

std::wstring_view TrimBlanks(std::wstring_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(L' '), text.size()));
    return text.substr(0, text.find_last_not_of(L' ') + 1);
}

bool AreHexDigits(std::wstring_view text, size_t length)
{
    const std::wstring_view digits = TrimBlanks(text);
    return digits.size() == length &&
           std::ranges::all_of(digits, [](wchar_t digit) { return HexDigit(digit).has_value(); });
}

bool IsHexString(std::wstring& text, size_t length)
{
    MakeUpper(text);
    text = TrimBlanks(text); // in its own memory
    return AreHexDigits(text, length);
}

} // namespace acg
