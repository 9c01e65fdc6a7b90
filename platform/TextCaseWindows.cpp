#include "platform/TextCase.h"

#include <windows.h>

namespace acg
{

namespace
{

wchar_t Changed(wchar_t character, DWORD change)
{
    wchar_t changed = character;
    LCMapStringEx(LOCALE_NAME_INVARIANT, change, &character, 1, &changed, 1, nullptr, nullptr, 0);
    return changed;
}

} // namespace

wchar_t SystemToUpper(wchar_t Character)
{
    return Changed(Character, LCMAP_UPPERCASE);
}

wchar_t SystemToLower(wchar_t Character)
{
    return Changed(Character, LCMAP_LOWERCASE);
}

} // namespace acg
