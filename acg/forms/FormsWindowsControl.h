// The window of a control, in the window layer of Windows: one of the system's own controls.
#pragma once

#include "acg/forms/FormsWindowsDrawing.h"

namespace acg
{

/// Never moves in memory: its window refers to it.
class ControlWindow
{
public:
    /// Handle is null if the window can't be made. formPoints: the font of the form.
    ControlWindow(HWND dialog, int id, Control& control, double formPoints);
    ControlWindow(const ControlWindow&) = delete;
    ControlWindow& operator=(const ControlWindow&) = delete;

    [[nodiscard]] HWND Handle() const { return m_handle; }
    [[nodiscard]] bool TakesFocus() const;

    /// Shows the state of the model. Notifications that this causes change nothing: the model has changed
    /// before.
    void Show() const;
    /// Updates the model by what a person has done; its handlers run.
    void Report(int notification) const;
    /// The result of a WM_CTLCOLOR message.
    [[nodiscard]] HBRUSH SetColours(HDC context) const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    void FillList(int height) const;

    Control& m_model;
    FontPointer m_font;
    HWND m_handle = nullptr;
    WNDPROC m_ordinary = nullptr; ///< the window procedure of its class
};

} // namespace acg
