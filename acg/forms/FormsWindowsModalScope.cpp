#include "acg/forms/FormsWindowsModalScope.h"

#include <new>

namespace acg
{

ModalScope::ModalScope()
    : m_handle(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr))
{
    EnumThreadWindows(GetCurrentThreadId(), &Disable, reinterpret_cast<LPARAM>(this));
}

ModalScope::~ModalScope()
{
    for (const HWND window : m_disabled) {
        EnableWindow(window, TRUE);
    }
    DestroyWindow(m_handle); // now that one of them can become the active window
}

BOOL CALLBACK ModalScope::Disable(HWND window, LPARAM self) noexcept
{
    try {
        if (IsWindowVisible(window) != FALSE && IsWindowEnabled(window) != FALSE) {
            reinterpret_cast<ModalScope*>(self)->m_disabled.push_back(window);
            EnableWindow(window, FALSE);
        }
    } catch (const std::bad_alloc&) { // a window that can't be recorded stays enabled
    }
    return TRUE;
}

} // namespace acg
