#include "acg/forms/FormsWindowsControl.h"

namespace acg
{

namespace
{

/// Selects the field of a combo box in messages that take the number of a line.
constexpr auto FieldOfList = static_cast<WPARAM>(-1);

/// A drop-down list shows this many lines before it scrolls.
constexpr int ListLines = 8;

std::wstring WindowText(HWND window)
{
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)), L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size() + 1));
    text.resize(static_cast<size_t>(length));
    return text;
}

void ReportNothing(Control& /*model*/, HWND /*window*/, int /*notification*/) {}

void ReportButton(Control& model, HWND /*window*/, int notification)
{
    if (notification == BN_CLICKED) {
        model.Press();
    }
}

void ReportText(Control& model, HWND window, int notification)
{
    if (notification == EN_CHANGE) {
        model.Edit(WindowText(window));
    }
}

/// A list that opens or closes may have changed what its box shows, without another notification. The text
/// of a picked line appears in the box only after its notification.
void ReportList(Control& model, HWND window, int notification)
{
    const auto line = static_cast<int>(SendMessageW(window, CB_GETCURSEL, 0, 0));
    const std::wstring text = WindowText(window);
    const bool isShown = line != CB_ERR && model.Lines()[static_cast<size_t>(line)] == text;
    if (notification == CBN_SELCHANGE || (notification == CBN_CLOSEUP && isShown)) {
        model.Pick(line);
    } else if (notification == CBN_EDITCHANGE || notification == CBN_CLOSEUP) {
        model.Edit(text);
    }
}

struct WindowKind {
    const wchar_t* Class;
    DWORD Style;
    DWORD ExtendedStyle;
    void (*Report)(Control& model, HWND window, int notification);
};

/// In the order of ControlKind.
constexpr DWORD Combo = WS_VSCROLL | WS_TABSTOP;
constexpr WindowKind Kinds[] = {
    {L"BUTTON", BS_GROUPBOX, 0, ReportNothing},
    {L"STATIC", SS_LEFT, 0, ReportNothing},
    {L"COMBOBOX", Combo | CBS_DROPDOWN | CBS_AUTOHSCROLL, 0, ReportList},
    {L"COMBOBOX", Combo | CBS_DROPDOWNLIST, 0, ReportList},
    {L"EDIT", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE, ReportText},
    {L"EDIT", ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL, 0, ReportNothing},
    {L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP, 0, ReportButton},
};

const WindowKind& KindOf(const Control& control)
{
    return Kinds[static_cast<size_t>(control.Look.Kind)];
}

} // namespace

ControlWindow::ControlWindow(HWND dialog, int id, Control& control, double formPoints)
    : m_model(control), m_font(MakeFont(control.Look.FontPoints != 0 ? control.Look.FontPoints : formPoints))
{
    const WindowKind& kind = KindOf(m_model);
    const RECT area = Pixels(m_model.Look.Bounds);
    const int height = area.bottom - area.top;
    const bool isList = kind.Report == ReportList;
    m_handle = CreateWindowExW(kind.ExtendedStyle, kind.Class, L"", kind.Style | WS_CHILD | WS_VISIBLE,
                               area.left, area.top, area.right - area.left,
                               isList ? height * (1 + ListLines) : height, // with its lines
                               dialog, reinterpret_cast<HMENU>(INT_PTR{id}), nullptr, nullptr);
    if (m_handle == nullptr) {
        return;
    }
    SetWindowLongPtrW(m_handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_ordinary = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(m_handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure)));
    SendMessageW(m_handle, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.get()), FALSE);
    if (isList) {
        FillList(height);
    }
    Show();
}

void ControlWindow::FillList(int height) const
{
    // Its field follows the font, but has to fill its area. A system may make it higher than requested.
    LRESULT field = SendMessageW(m_handle, CB_GETITEMHEIGHT, FieldOfList, 0);
    for (int pass = 0; pass < 2; ++pass) {
        RECT closed{};
        GetWindowRect(m_handle, &closed);
        field += height - (closed.bottom - closed.top);
        SendMessageW(m_handle, CB_SETITEMHEIGHT, FieldOfList, field);
    }
    for (const std::wstring& line : m_model.Lines()) {
        SendMessageW(m_handle, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
    }
}

LRESULT CALLBACK ControlWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    const auto& own = *reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const auto accepts = own.m_model.AcceptsTyped;
    if (message == WM_CHAR && accepts != nullptr && !accepts(static_cast<wchar_t>(wParam))) {
        return 0;
    }
    // The log would handle Tab and Enter itself, and close the form at Escape.
    if (message == WM_GETDLGCODE && own.m_model.Look.Kind == ControlKind::Log) {
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    }
    return CallWindowProcW(own.m_ordinary, window, message, wParam, lParam);
}

bool ControlWindow::TakesFocus() const
{
    return m_model.IsEnabled() && (KindOf(m_model).Style & WS_TABSTOP) != 0;
}

void ControlWindow::Show() const
{
    const int line = m_model.SelectedLine();
    if (line != Control::NoLine) {
        SendMessageW(m_handle, CB_SETCURSEL, static_cast<WPARAM>(line), 0);
    } else {
        SetWindowTextW(m_handle, m_model.Text().c_str());
    }
    if (m_model.Look.Kind == ControlKind::Log) {
        const auto end = static_cast<WPARAM>(GetWindowTextLengthW(m_handle));
        SendMessageW(m_handle, EM_SETSEL, end, static_cast<LPARAM>(end));
        SendMessageW(m_handle, EM_SCROLLCARET, 0, 0);
    }
    EnableWindow(m_handle, m_model.IsEnabled() ? TRUE : FALSE);
    InvalidateRect(m_handle, nullptr, TRUE);
}

void ControlWindow::Report(int notification) const
{
    KindOf(m_model).Report(m_model, m_handle, notification);
}

HBRUSH ControlWindow::SetColours(HDC context) const
{
    return SetTextColours(context, m_model.Background(), m_model.IsEnabled());
}

} // namespace acg
