#include "platform/TextCase.h"

#include <clocale>
#include <cwctype>

namespace acg
{

namespace
{

constexpr wchar_t FirstBeyondAscii = 0x80;

/// The locale that belongs to no language and knows every letter; that of ASCII where the system lacks it.
locale_t Neutral()
{
    static const locale_t locale = [] { // kept until the process ends
        const locale_t neutral = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return neutral != nullptr ? neutral : newlocale(LC_CTYPE_MASK, "C", nullptr);
    }();
    return locale;
}

} // namespace

// ASCII goes without the system, which takes its time for each character.

void MakeUpper(std::wstring& Text)
{
    for (wchar_t& character : Text) {
        character = character < FirstBeyondAscii
                        ? AsciiToUpper(character)
                        : static_cast<wchar_t>(towupper_l(static_cast<wint_t>(character), Neutral()));
    }
}

void MakeLower(std::wstring& Text)
{
    for (wchar_t& character : Text) {
        character = character < FirstBeyondAscii
                        ? AsciiToLower(character)
                        : static_cast<wchar_t>(towlower_l(static_cast<wint_t>(character), Neutral()));
    }
}

} // namespace acg
