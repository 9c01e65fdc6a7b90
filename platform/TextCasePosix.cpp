#include "platform/TextCase.h"

#include <clocale>
#include <cwctype>

namespace acg
{

namespace
{

/// The locale that belongs to no language, and knows every letter.
locale_t Neutral()
{
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

wchar_t Changed(wchar_t character, wint_t (*change)(wint_t, locale_t))
{
    const locale_t locale = Neutral();
    return locale != nullptr ? static_cast<wchar_t>(change(static_cast<wint_t>(character), locale))
                             : character;
}

} // namespace

wchar_t SystemToUpper(wchar_t Character)
{
    return Changed(Character, towupper_l);
}

wchar_t SystemToLower(wchar_t Character)
{
    return Changed(Character, towlower_l);
}

} // namespace acg
