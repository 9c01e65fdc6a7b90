// The window layer of Windows: a form is a dialog of the system, its controls are the system's own.
//
// The dialog manager does the keyboard: Tab, Enter, Escape and the access keys. Handlers run inside window
// procedures, which no exception may leave: it closes the form, and ShowModal rethrows it.
#include "acg/forms/FormsWindowsControl.h"
#include "acg/forms/FormsWindowsDrawing.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <new>
#include <utility>
#include <vector>

namespace acg
{

namespace
{

/// The id of a control is its index, clear of IDOK and IDCANCEL, to which the dialog manager maps Enter and
/// Escape.
constexpr int FirstId = 100;
constexpr UINT_PTR TimerId = 1;

/// More events than any form has pending. A window that never paints itself would keep one pending for ever.
constexpr int MaxMessages = 1000;

/// An empty dialog template.
struct alignas(DWORD) EmptyTemplate {
    DLGTEMPLATE Header = {.style = DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE};
    WORD Menu = 0;
    WORD Class = 0;
    WORD Title = 0;
};

/// The modality of a form that has no owner. An invisible window stands in for one and keeps the form out of
/// the task bar. As long as it lives, the other windows of the thread take no input: the form alone would not
/// disable them.
class ModalScope
{
public:
    ModalScope() { EnumThreadWindows(GetCurrentThreadId(), &Disable, reinterpret_cast<LPARAM>(this)); }
    ~ModalScope()
    {
        for (const HWND window : m_disabled) {
            EnableWindow(window, TRUE);
        }
        DestroyWindow(m_handle); // now that one of them can become the active window
    }
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;

    [[nodiscard]] HWND Handle() const { return m_handle; }

private:
    static BOOL CALLBACK Disable(HWND window, LPARAM self) noexcept
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

    const HWND m_handle =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    std::vector<HWND> m_disabled;
};

} // namespace

class FormWindow
{
public:
    explicit FormWindow(Form& form) : m_model(form) { m_model.m_window = this; }
    ~FormWindow() { m_model.m_window = nullptr; }
    FormWindow(const FormWindow&) = delete;
    FormWindow& operator=(const FormWindow&) = delete;

    /// Runs until Close. False: no window can be shown.
    bool RunModal(HWND owner);
    void Close() const { EndDialog(m_dialog, 0); }

    [[nodiscard]] HWND Handle() const { return m_dialog; }
    /// The window of a control; null for an index that is none.
    [[nodiscard]] const ControlWindow* At(size_t index) const
    {
        return index < m_controls.size() ? &m_controls[index] : nullptr;
    }
    void SetFocus(const ControlWindow& control) const;
    void PumpMessages() const;

private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    INT_PTR Answer(UINT message, WPARAM wParam, LPARAM lParam);
    void Command(int id, int notification) const;
    bool MakeControls();
    void Place() const;
    void Paint(HDC context) const;
    [[nodiscard]] const ControlWindow* WithId(int id) const { return At(static_cast<size_t>(id - FirstId)); }

    Form& m_model;
    HWND m_dialog = nullptr;
    std::deque<ControlWindow> m_controls; // a deque, as its elements never move
    bool m_isShown = false;
    std::exception_ptr m_thrown;
};

bool FormWindow::RunModal(HWND owner)
{
    const EmptyTemplate empty;
    DialogBoxIndirectParamW(nullptr, &empty.Header, owner, &Procedure, reinterpret_cast<LPARAM>(this));
    if (m_thrown) {
        std::rethrow_exception(m_thrown);
    }
    return m_isShown;
}

INT_PTR CALLBACK FormWindow::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        reinterpret_cast<FormWindow*>(lParam)->m_dialog = dialog;
    }
    auto* const window = reinterpret_cast<FormWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (window == nullptr) {
        return FALSE;
    }
    try {
        return window->Answer(message, wParam, lParam);
    } catch (...) {
        if (!window->m_thrown) { // the first is rethrown; the others follow from it
            window->m_thrown = std::current_exception();
        }
        window->Close();
        return FALSE;
    }
}

/// A result of 0 leaves the message to the dialog manager.
INT_PTR FormWindow::Answer(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        m_isShown = MakeControls();
        if (!m_isShown) {
            Close();
        }
        return FALSE; // the focus is set
    case WM_COMMAND:
        Command(LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_TIMER:
        // A message posted before the timer was stopped may still arrive.
        if (m_model.TimerInterval() != 0 && m_model.OnTimer) {
            m_model.OnTimer();
        }
        return TRUE;
    case WM_CLOSE: // the dialog manager would treat it as Escape
        m_model.PressCloseBox();
        return TRUE;
    case WM_ERASEBKGND:
        Paint(reinterpret_cast<HDC>(wParam));
        SetWindowLongPtrW(m_dialog, DWLP_MSGRESULT, TRUE);
        return TRUE;
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC: // of what is disabled or read-only, too
        if (const ControlWindow* const control = WithId(GetDlgCtrlID(reinterpret_cast<HWND>(lParam)))) {
            return reinterpret_cast<INT_PTR>(control->SetColours(reinterpret_cast<HDC>(wParam)));
        }
        return FALSE; // a part of a combo box: the system's own colours
    default:
        return FALSE;
    }
}

void FormWindow::Command(int id, int notification) const
{
    if (id == IDCANCEL && m_model.CancelButton != nullptr) {
        m_model.CancelButton->Press();
    } else if (const ControlWindow* const control = WithId(id)) {
        control->Report(notification);
    }
}

bool FormWindow::MakeControls()
{
    SetWindowTextW(m_dialog, m_model.Caption.c_str());
    Place();
    for (Control& control : m_model.Controls()) {
        const int id = FirstId + static_cast<int>(control.Index);
        if (m_controls.emplace_back(m_dialog, id, control, m_model.Look.FontPoints).Handle() == nullptr) {
            return false;
        }
    }
    if (m_model.DefaultButton != nullptr) {
        SendMessageW(m_dialog, DM_SETDEFID, FirstId + m_model.DefaultButton->Index, 0);
    }
    m_model.ShowTimer();
    m_model.ShowCloseBox();
    const auto first = std::ranges::find_if(m_controls, &ControlWindow::TakesFocus);
    if (first != m_controls.end()) {
        SetFocus(*first);
    }
    return true;
}

/// Sizes the dialog and centres it on its owner or the screen, always within one screen.
void FormWindow::Place() const
{
    const HWND owner = GetWindow(m_dialog, GW_OWNER);
    MONITORINFO screen{.cbSize = sizeof screen};
    GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTONEAREST), &screen);
    const RECT& work = screen.rcWork;
    RECT around = work;
    if (IsWindowVisible(owner) != FALSE) {
        GetWindowRect(owner, &around);
    }
    RECT area = Pixels({0, 0, m_model.Look.Width, m_model.Look.Height});
    AdjustWindowRectEx(&area, static_cast<DWORD>(GetWindowLongPtrW(m_dialog, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(m_dialog, GWL_EXSTYLE)));
    const LONG width = area.right - area.left;
    const LONG height = area.bottom - area.top;
    const LONG left = std::min((around.left + around.right - width) / 2, work.right - width);
    const LONG top = std::min((around.top + around.bottom - height) / 2, work.bottom - height);
    SetWindowPos(m_dialog, nullptr, std::max(left, work.left), std::max(top, work.top), width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormWindow::Paint(HDC context) const
{
    RECT all{};
    GetClientRect(m_dialog, &all);
    FillArea(context, all, {Colour::Source::Form});
    for (const Shape& shape : m_model.Shapes) {
        RECT area = Pixels(shape.Bounds);
        area.bottom = std::max(area.bottom, area.top + 1);
        FillArea(context, area, shape.Fill);
    }
}

/// Through the dialog manager, which also marks the default button.
void FormWindow::SetFocus(const ControlWindow& control) const
{
    SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control.Handle()), TRUE);
}

void FormWindow::PumpMessages() const
{
    MSG event{};
    for (int left = MaxMessages; left > 0 && PeekMessageW(&event, nullptr, 0, 0, PM_REMOVE) != FALSE;
         --left) {
        if (event.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(event.wParam)); // for the loops outside
            return;
        }
        // An owner is disabled meanwhile: no key is meant for it.
        if (IsDialogMessageW(m_dialog, &event) == FALSE) {
            TranslateMessage(&event);
            DispatchMessageW(&event);
        }
    }
}

void Control::Show() const
{
    if (m_form.m_window != nullptr) {
        if (const ControlWindow* const window = m_form.m_window->At(Index)) {
            window->Show();
        }
    }
}

bool Form::ShowModal(const Form* owner)
{
    FormWindow window(*this);
    if (owner != nullptr && owner->IsOpen()) {
        return window.RunModal(owner->m_window->Handle());
    }
    const ModalScope scope;
    return window.RunModal(scope.Handle());
}

void Form::Close()
{
    if (m_window != nullptr) {
        std::exchange(m_window, nullptr)->Close();
    }
}

void Form::ShowTimer() const
{
    if (m_window == nullptr) {
        return;
    }
    if (m_timerInterval != 0) {
        SetTimer(m_window->Handle(), TimerId, static_cast<UINT>(m_timerInterval), nullptr);
    } else {
        KillTimer(m_window->Handle(), TimerId);
    }
}

void Form::ShowCloseBox() const
{
    if (m_window != nullptr) {
        EnableMenuItem(GetSystemMenu(m_window->Handle(), FALSE), SC_CLOSE,
                       m_hasWorkingCloseBox ? MF_ENABLED : MF_GRAYED);
    }
}

void Form::SetFocus(const Control& control)
{
    if (m_window != nullptr) {
        m_window->SetFocus(*m_window->At(control.Index));
    }
}

void Form::ShowNow(const Control& control)
{
    if (m_window != nullptr) {
        UpdateWindow(m_window->At(control.Index)->Handle());
        m_window->PumpMessages();
    }
}

} // namespace acg
