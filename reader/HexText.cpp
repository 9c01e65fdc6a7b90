#include "reader/HexText.h"

#include "platform/TextCase.h"

#include <utility>

namespace acg
{

namespace
{

constexpr wchar_t Digits[] = L"0123456789ABCDEF";

/// In place, so that no copy of a key is left behind in freed memory.
void TrimBlanks(std::wstring& text)
{
    text.erase(text.find_last_not_of(L' ') + 1);
    text.erase(0, text.find_first_not_of(L' '));
}

} // namespace

bool IsHexString(std::wstring& Text, int32_t Length)
{
    MakeUpper(Text);
    TrimBlanks(Text);
    if (Length != AnyLength && std::cmp_not_equal(Text.size(), Length)) {
        return false;
    }
    return Text.find_first_not_of(Digits) == std::wstring::npos;
}

std::wstring TwoHexDigits(int32_t Value)
{
    const auto byte = static_cast<uint8_t>(Value);
    return {Digits[byte >> 4], Digits[byte & 0x0F]};
}

std::wstring EightHexDigits(int32_t Value)
{
    std::wstring digits;
    for (const int bits : {24, 16, 8, 0}) {
        digits += TwoHexDigits(Value >> bits);
    }
    return digits;
}

std::optional<int> HexDigit(wchar_t Character)
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
