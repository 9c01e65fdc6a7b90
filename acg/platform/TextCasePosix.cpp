#include "acg/platform/TextCase.h"

#include <clocale>
#include <cwctype>

namespace acg
{

namespace
{

constexpr wchar_t FirstBeyondAscii = 0x80;

/// The language-neutral locale, which knows every letter; that of ASCII if the system lacks it.
locale_t Neutral()
{
    static const locale_t locale = [] { // kept until the process ends
        const locale_t neutral = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return neutral != nullptr ? neutral : newlocale(LC_CTYPE_MASK, "C", nullptr);
    }();
    return locale;
}

template <auto OfAscii, auto OfAny>
void Change(std::wstring& text)
{
    for (wchar_t& character : text) {
        if (character < FirstBeyondAscii) { // the system's function is slow for each character
            character = OfAscii(character);
            continue;
        }
        // As on Windows no letter becomes one of ASCII: a capital I with a dot doesn't make a keyword.
        const auto changed = static_cast<wchar_t>(OfAny(static_cast<wint_t>(character), Neutral()));
        character = changed < FirstBeyondAscii ? character : changed;
    }
}

} // namespace

void MakeUpper(std::wstring& text)
{
    Change<AsciiToUpper<wchar_t>, towupper_l>(text);
}

void MakeLower(std::wstring& text)
{
    Change<AsciiToLower<wchar_t>, towlower_l>(text);
}

} // namespace acg
