#include "acg/platform/AnsiText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>

namespace acg
{

namespace
{

/// Windows-1252, codes 80 to 9F: the only ones that differ from Latin-1. An unassigned code maps to
/// itself.
constexpr wchar_t UpperControls[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178, // 98
};
constexpr int FirstUpperControl = 0x80;

char ToAnsi(wchar_t character)
{
    const bool isAscii = character >= 0 && character < FirstUpperControl;
    const bool isLatin1 = character > 0x9F && character <= 0xFF;
    if (isAscii || isLatin1) {
        return static_cast<char>(character);
    }
    const auto* found = std::find(std::begin(UpperControls), std::end(UpperControls), character);
    return found == std::end(UpperControls) ? '?'
                                            : static_cast<char>(FirstUpperControl + (found - UpperControls));
}

wchar_t FromAnsi(char character)
{
    const auto code = static_cast<unsigned char>(character);
    const bool isUpperControl = code >= FirstUpperControl && code <= 0x9F;
    return isUpperControl ? UpperControls[code - FirstUpperControl] : static_cast<wchar_t>(code);
}

} // namespace

std::string ToAnsi(std::wstring_view text)
{
    std::string ansi(text.size(), '\0');
    std::ranges::transform(text, ansi.begin(), [](wchar_t character) { return ToAnsi(character); });
    return ansi;
}

std::wstring FromAnsi(std::string_view text)
{
    std::wstring wide(text.size(), L'\0');
    std::ranges::transform(text, wide.begin(), [](char character) { return FromAnsi(character); });
    return wide;
}

SystemPath PathFromAnsi(std::string_view text)
{
    return SystemPath(text);
}

void ByteString::Free(char* bytes)
{
    std::free(bytes - sizeof(uint32_t)); // its length comes first
}

} // namespace acg
