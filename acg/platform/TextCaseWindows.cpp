#include "acg/platform/TextCase.h"

#include <windows.h>

namespace acg
{

namespace
{

void Change(std::wstring& text, DWORD change)
{
    const auto size = static_cast<int>(text.size());
    LCMapStringEx(LOCALE_NAME_INVARIANT, change, text.data(), size, text.data(), size, nullptr, nullptr, 0);
}

} // namespace

void MakeUpper(std::wstring& text)
{
    Change(text, LCMAP_UPPERCASE);
}

void MakeLower(std::wstring& text)
{
    Change(text, LCMAP_LOWERCASE);
}

} // namespace acg
