#include "acg/reader/HexText.h"

#include "acg/platform/TextCase.h"

#include <algorithm>

namespace acg
{

std::wstring_view TrimBlanks(std::wstring_view Text)
{
    Text.remove_prefix(std::min(Text.find_first_not_of(L' '), Text.size()));
    return Text.substr(0, Text.find_last_not_of(L' ') + 1);
}

bool AreHexDigits(std::wstring_view Text, size_t Length)
{
    const std::wstring_view digits = TrimBlanks(Text);
    return digits.size() == Length &&
           std::ranges::all_of(digits, [](wchar_t digit) { return HexDigit(digit).has_value(); });
}

bool IsHexString(std::wstring& Text, size_t Length)
{
    MakeUpper(Text);
    Text = TrimBlanks(Text); // in its own memory
    return AreHexDigits(Text, Length);
}

std::wstring TwoHexDigits(int32_t Value)
{
    const auto byte = static_cast<uint8_t>(Value);
    return {static_cast<wchar_t>(HexDigits[byte >> 4]), static_cast<wchar_t>(HexDigits[byte & 0x0F])};
}

uint32_t ReadHexDigits(std::wstring_view Text)
{
    uint32_t number = 0;
    for (const wchar_t character : Text) {
        const std::optional<int> digit = HexDigit(character);
        if (!digit) {
            break;
        }
        number = number << 4 | static_cast<uint32_t>(*digit);
    }
    return number;
}

} // namespace acg
