// Modality of a form that has no owner.
#pragma once

#include <vector>
#include <windows.h>

namespace acg
{

/// An invisible window that keeps the form out of the task bar in an owner's place. As long as it lives, the
/// other windows of the thread take no input: the form alone would not disable them.
class ModalScope
{
public:
    ModalScope();
    ~ModalScope();
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;

    [[nodiscard]] HWND Handle() const { return m_handle; }

private:
    static BOOL CALLBACK Disable(HWND window, LPARAM self) noexcept;

    HWND m_handle;
    std::vector<HWND> m_disabled;
};

} // namespace acg
