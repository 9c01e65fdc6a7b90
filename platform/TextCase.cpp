#include "platform/TextCase.h"

#include <algorithm>

namespace acg
{

namespace
{

/// Lower-case letters first to last, in ascending order, each with its capital at the same distance.
struct CaseRange {
    wchar_t FirstLower;
    wchar_t LastLower;
    wchar_t FirstUpper;
};

constexpr CaseRange CaseRanges[] = {
    {L'a', L'z', L'A'},       {0x00E0, 0x00F6, 0x00C0}, // a grave to o diaeresis
    {0x00F8, 0x00FE, 0x00D8},                           // o stroke to thorn
    {0x00FF, 0x00FF, 0x0178},                           // y diaeresis
    {0x0153, 0x0153, 0x0152},                           // oe
    {0x0161, 0x0161, 0x0160},                           // s caron
    {0x017E, 0x017E, 0x017D},                           // z caron
};

wchar_t Upper(wchar_t character)
{
    for (const CaseRange& range : CaseRanges) {
        if (character < range.FirstLower) {
            break;
        }
        if (character <= range.LastLower) {
            return static_cast<wchar_t>(range.FirstUpper + (character - range.FirstLower));
        }
    }
    return character;
}

wchar_t Lower(wchar_t character)
{
    for (const CaseRange& range : CaseRanges) {
        if (character >= range.FirstUpper &&
            character <= range.FirstUpper + (range.LastLower - range.FirstLower)) {
            return static_cast<wchar_t>(range.FirstLower + (character - range.FirstUpper));
        }
    }
    return character;
}

} // namespace

void MakeUpper(std::wstring& Text)
{
    std::ranges::transform(Text, Text.begin(), Upper);
}

std::wstring ToLower(std::wstring Text)
{
    std::ranges::transform(Text, Text.begin(), Lower);
    return Text;
}

} // namespace acg
