// The window layer of Windows: a form is a dialog of the system, its controls are the system's own.
//
// The dialog manager does the keyboard: Tab, Enter, Escape and the access keys. Handlers run inside window
// procedures, which no exception may leave: it closes the form, and goes on from RunModal.
#include "platform/FormWindow.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <exception>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>
#include <windows.h>

namespace acg
{

namespace
{

constexpr int TwipsPerInch = 1440;
constexpr int PointsPerInch = 72;

/// Ids of the controls count from here, in tab order: clear of IDOK and IDCANCEL, which the dialog manager
/// makes of Enter and Escape.
constexpr int FirstId = 100;
constexpr UINT_PTR TimerId = 1;

/// Stands for the field of a combo box where its lines have numbers.
constexpr auto FieldOfList = static_cast<WPARAM>(-1);

/// A drop-down list shows this many lines before it scrolls.
constexpr int ListLines = 8;

/// More events than any form has pending. A window that never paints itself would keep one pending for ever.
constexpr int MostEvents = 1000;

struct WindowKind {
    const wchar_t* Class;
    DWORD Style;
    DWORD ExtendedStyle = 0;
};

WindowKind KindOf(ControlKind kind)
{
    switch (kind) {
    case ControlKind::Frame:
        return {L"BUTTON", BS_GROUPBOX};
    case ControlKind::Label:
        return {L"STATIC", SS_LEFT};
    case ControlKind::EditCombo:
        return {L"COMBOBOX", CBS_DROPDOWN | CBS_AUTOHSCROLL | WS_VSCROLL | WS_TABSTOP};
    case ControlKind::DropDownList:
        return {L"COMBOBOX", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP};
    case ControlKind::TextField:
        return {L"EDIT", ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE};
    case ControlKind::Log:
        return {L"EDIT", ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL};
    case ControlKind::Button:
        return {L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP};
    }
    return {};
}

bool IsList(const Control& control)
{
    return control.Look.Kind == ControlKind::EditCombo || control.Look.Kind == ControlKind::DropDownList;
}

bool HasOwnBackground(const Control& control)
{
    return IsList(control) || control.Look.Kind == ControlKind::TextField ||
           control.Look.Kind == ControlKind::Log;
}

COLORREF ColourOf(const Colour& colour)
{
    switch (colour.From) {
    case Colour::Source::Form:
        return GetSysColor(COLOR_BTNFACE);
    case Colour::Source::Window:
        return GetSysColor(COLOR_WINDOW);
    case Colour::Source::Menu:
        return GetSysColor(COLOR_MENU);
    case Colour::Source::Highlight3D:
        return GetSysColor(COLOR_3DHIGHLIGHT);
    case Colour::Source::Own:
        return RGB(colour.Red, colour.Green, colour.Blue);
    }
    return 0;
}

/// A brush that nobody has to delete; the device context keeps its colour.
HBRUSH BrushOf(HDC context, const Colour& colour)
{
    SetDCBrushColor(context, ColourOf(colour));
    return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

std::wstring TextOf(HWND window)
{
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)), L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size() + 1));
    text.resize(static_cast<size_t>(length));
    return text;
}

/// A list that opens or closes may have changed what its box shows, without another notification. The text
/// of a picked line comes into the box after its notification.
void ReadList(Control& list, HWND window, int notification)
{
    const auto line = static_cast<int>(SendMessageW(window, CB_GETCURSEL, 0, 0));
    const std::wstring text = TextOf(window);
    const bool isShown = line != CB_ERR && list.Lines()[static_cast<size_t>(line)] == text;
    if (notification == CBN_SELCHANGE || (notification == CBN_CLOSEUP && isShown)) {
        list.Pick(line);
    } else if (notification == CBN_EDITCHANGE || notification == CBN_CLOSEUP) {
        list.Edit(text);
    }
}

int ScreenDpi()
{
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi;
}

struct FontDeleter {
    void operator()(HFONT font) const { DeleteObject(font); }
};
using Font = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

Font MakeFont(double points, int dpi)
{
    const auto height = static_cast<int>(std::lround(points * dpi / PointsPerInch));
    return Font(CreateFontW(-height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                            OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                            DEFAULT_PITCH | FF_DONTCARE, L"Tahoma"));
}

/// What stands in for an owner where a form has none: the window that keeps it out of the task bar. As long
/// as it lives, the other windows of the thread take no input, or they would not be shut out by the form.
class NoOwner
{
public:
    NoOwner()
        : m_window(
              CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr))
    {
        EnumThreadWindows(GetCurrentThreadId(), &ShutOut, reinterpret_cast<LPARAM>(this));
    }
    ~NoOwner()
    {
        for (const HWND window : m_shutOut) {
            EnableWindow(window, TRUE);
        }
        DestroyWindow(m_window); // now that one of them can become the active window
    }
    NoOwner(const NoOwner&) = delete;
    NoOwner& operator=(const NoOwner&) = delete;

    [[nodiscard]] HWND Window() const { return m_window; }

private:
    static BOOL CALLBACK ShutOut(HWND window, LPARAM self) noexcept
    {
        try {
            if (IsWindowVisible(window) != FALSE && IsWindowEnabled(window) != FALSE) {
                reinterpret_cast<NoOwner*>(self)->m_shutOut.push_back(window);
                EnableWindow(window, FALSE);
            }
        } catch (const std::bad_alloc&) { // a window that can't be noted stays as it is
        }
        return TRUE;
    }

    HWND m_window;
    std::vector<HWND> m_shutOut;
};

/// A dialog of the system without anything in it.
struct alignas(DWORD) EmptyTemplate {
    DLGTEMPLATE Header = {.style = DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE};
    WORD Menu = 0;
    WORD Class = 0;
    WORD Title = 0;
};

} // namespace

/// The handlers of a dialog, and what they have at hand.
struct FormWindow::System {
    struct ControlWindow {
        System& Of;
        Control& Model;
        Font Face;
        WNDPROC Ordinary = nullptr; ///< the window procedure of its class
    };

    System(FormWindow& layer, Form& form) : Layer(layer), Model(form) {}

    FormWindow& Layer;
    Form& Model;
    const int Dpi = ScreenDpi();
    const System* Owner = nullptr; ///< the form on top of which it is shown
    HWND Dialog = nullptr;
    std::deque<ControlWindow> Controls; // a deque, as its elements stay where they are
    bool IsShown = false;
    bool IsQuiet = false; ///< notifications that come now are of what the layer itself does
    std::exception_ptr Thrown;

    static INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    static LRESULT CALLBACK ControlProcedure(HWND window, UINT message, WPARAM wParam,
                                             LPARAM lParam) noexcept;
    INT_PTR Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void HandleCommand(int id, int notification);
    void Keep(std::exception_ptr thrown);
    void Close() const;

    [[nodiscard]] RECT Pixels(const Area& twips) const;
    [[nodiscard]] int IdOf(const Control& control) const;
    [[nodiscard]] HWND WindowOf(const Control& control) const;
    bool MakeControls();
    bool MakeControl(Control& control);
    void Place() const;
    void Paint(HDC context) const;
    [[nodiscard]] INT_PTR Background(HDC context, HWND window) const;

    /// Calls what changes a window, and lets none of the notifications through that come of it.
    template <class Change>
    void Quietly(const Control& control, Change change)
    {
        const bool before = std::exchange(IsQuiet, true);
        change(WindowOf(control));
        IsQuiet = before;
    }
};

INT_PTR FormWindow::System::DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        reinterpret_cast<System*>(lParam)->Dialog = dialog;
    }
    auto* const system = reinterpret_cast<System*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (system == nullptr) {
        return FALSE;
    }
    try {
        return system->Handle(message, wParam, lParam);
    } catch (...) {
        system->Keep(std::current_exception());
        return FALSE;
    }
}

LRESULT FormWindow::System::ControlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    const auto& own = *reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_CHAR && own.Model.AcceptsTyped) {
        try {
            if (!own.Model.AcceptsTyped(static_cast<wchar_t>(wParam))) {
                return 0;
            }
        } catch (...) {
            own.Of.Keep(std::current_exception());
            return 0;
        }
    }
    // The log would take Tab and Enter for itself, and close the form at Escape.
    if (message == WM_GETDLGCODE && own.Model.Look.Kind == ControlKind::Log) {
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    }
    return CallWindowProcW(own.Ordinary, window, message, wParam, lParam);
}

/// A result of 0 leaves the message to the dialog manager.
INT_PTR FormWindow::System::Handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        IsShown = MakeControls();
        if (!IsShown) {
            Close();
        }
        return FALSE; // the focus is set
    case WM_COMMAND:
        HandleCommand(LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_TIMER:
        // One that had come due before the timer was stopped may still arrive.
        if (Model.TimerInterval() != 0 && Model.OnTimer) {
            Model.OnTimer();
        }
        return TRUE;
    case WM_CLOSE: // left to the dialog manager it would become Escape
        Model.PressCloseBox();
        return TRUE;
    case WM_ERASEBKGND:
        Paint(reinterpret_cast<HDC>(wParam));
        SetWindowLongPtrW(Dialog, DWLP_MSGRESULT, TRUE);
        return TRUE;
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC: // of what is disabled or read-only, too
        return Background(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    default:
        return FALSE;
    }
}

void FormWindow::System::HandleCommand(int id, int notification)
{
    if (id == IDCANCEL && Model.CancelButton != nullptr) {
        Model.CancelButton->Press();
    }
    if (IsQuiet || id < FirstId || std::cmp_greater_equal(id - FirstId, Controls.size())) {
        return;
    }
    Control& control = Controls[static_cast<size_t>(id - FirstId)].Model;
    const HWND window = WindowOf(control);
    switch (control.Look.Kind) {
    case ControlKind::Button:
        if (notification == BN_CLICKED) {
            control.Press();
        }
        break;
    case ControlKind::TextField:
        if (notification == EN_CHANGE) {
            control.Edit(TextOf(window));
        }
        break;
    case ControlKind::EditCombo:
    case ControlKind::DropDownList:
        ReadList(control, window, notification);
        break;
    default:
        break;
    }
}

/// The first failure is the one that goes on; the others come of it.
void FormWindow::System::Keep(std::exception_ptr thrown)
{
    if (!Thrown) {
        Thrown = std::move(thrown);
    }
    Close();
}

void FormWindow::System::Close() const
{
    EndDialog(Dialog, 0);
}

/// Edges are rounded, not sizes: areas that touch in twips touch in pixels.
RECT FormWindow::System::Pixels(const Area& twips) const
{
    const auto pixels = [this](int value) { return LONG{MulDiv(value, Dpi, TwipsPerInch)}; };
    return {pixels(twips.Left), pixels(twips.Top), pixels(twips.Left + twips.Width),
            pixels(twips.Top + twips.Height)};
}

int FormWindow::System::IdOf(const Control& control) const
{
    const auto found = std::ranges::find(Model.Controls(), &control, [](const Control& one) { return &one; });
    return FirstId + static_cast<int>(found - Model.Controls().begin());
}

HWND FormWindow::System::WindowOf(const Control& control) const
{
    return GetDlgItem(Dialog, IdOf(control));
}

bool FormWindow::System::MakeControls()
{
    SetWindowTextW(Dialog, Model.Caption.c_str());
    Place();
    for (Control& control : Model.Controls()) {
        if (!MakeControl(control)) {
            return false;
        }
    }
    if (Model.DefaultButton != nullptr) {
        SendMessageW(Dialog, DM_SETDEFID, static_cast<WPARAM>(IdOf(*Model.DefaultButton)), 0);
    }
    Layer.ShowTimer();
    Layer.ShowCloseBox();
    const auto first = std::ranges::find_if(Model.Controls(), [](const Control& control) {
        return control.IsEnabled() && (KindOf(control.Look.Kind).Style & WS_TABSTOP) != 0;
    });
    if (first != Model.Controls().end()) {
        Layer.SetFocus(*first);
    }
    return true;
}

bool FormWindow::System::MakeControl(Control& control)
{
    const WindowKind kind = KindOf(control.Look.Kind);
    const RECT area = Pixels(control.Look.Where);
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const bool isList = IsList(control);
    // The height of a list is given with its lines.
    const HWND window =
        CreateWindowExW(kind.ExtendedStyle, kind.Class, L"", kind.Style | WS_CHILD | WS_VISIBLE, area.left,
                        area.top, width, isList ? height * (1 + ListLines) : height, Dialog,
                        reinterpret_cast<HMENU>(INT_PTR{IdOf(control)}), nullptr, nullptr);
    if (window == nullptr) {
        return false;
    }
    const double points = control.Look.FontPoints != 0 ? control.Look.FontPoints : Model.Look.FontPoints;
    ControlWindow& own = Controls.emplace_back(*this, control, MakeFont(points, Dpi));
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&own));
    own.Ordinary = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ControlProcedure)));
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(own.Face.get()), FALSE);
    if (isList) {
        // Its field follows the font, and shall fill its area. A system may make it higher than it is told.
        LRESULT field = SendMessageW(window, CB_GETITEMHEIGHT, FieldOfList, 0);
        for (int pass = 0; pass < 2; ++pass) {
            RECT closed{};
            GetWindowRect(window, &closed);
            field += height - (closed.bottom - closed.top);
            SendMessageW(window, CB_SETITEMHEIGHT, FieldOfList, field);
        }
        Layer.ShowLines(control);
    }
    Layer.ShowText(control);
    Layer.ShowEnabled(control);
    return true;
}

/// Gives the dialog its size, in the middle of its owner or of the screen, and wholly on one screen.
void FormWindow::System::Place() const
{
    MONITORINFO screen{.cbSize = sizeof screen};
    GetMonitorInfoW(MonitorFromWindow(GetWindow(Dialog, GW_OWNER), MONITOR_DEFAULTTONEAREST), &screen);
    const RECT& work = screen.rcWork;
    RECT around = work;
    if (Owner != nullptr) {
        GetWindowRect(Owner->Dialog, &around);
    }
    RECT area = Pixels({0, 0, Model.Look.Width, Model.Look.Height});
    AdjustWindowRectEx(&area, static_cast<DWORD>(GetWindowLongPtrW(Dialog, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(Dialog, GWL_EXSTYLE)));
    const LONG width = area.right - area.left;
    const LONG height = area.bottom - area.top;
    const LONG left = std::min((around.left + around.right - width) / 2, work.right - width);
    const LONG top = std::min((around.top + around.bottom - height) / 2, work.bottom - height);
    SetWindowPos(Dialog, nullptr, std::max(left, work.left), std::max(top, work.top), width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormWindow::System::Paint(HDC context) const
{
    RECT all{};
    GetClientRect(Dialog, &all);
    FillRect(context, &all, BrushOf(context, {Colour::Source::Form}));
    for (const Shape& shape : Model.Shapes) {
        RECT area = Pixels(shape.Where);
        area.bottom = std::max(area.bottom, area.top + 1);
        FillRect(context, &area, BrushOf(context, shape.Fill));
    }
}

/// The system's pairs of colours: its text colours change with its backgrounds. The parts of a combo box keep
/// the system's own.
INT_PTR FormWindow::System::Background(HDC context, HWND window) const
{
    const int index = GetDlgCtrlID(window) - FirstId;
    if (index < 0 || std::cmp_greater_equal(index, Controls.size())) {
        return 0;
    }
    const Control& control = Controls[static_cast<size_t>(index)].Model;
    const bool isField = HasOwnBackground(control);
    const Colour background = isField ? control.Background() : Colour{Colour::Source::Form};
    if (!control.IsEnabled()) {
        SetTextColor(context, GetSysColor(COLOR_GRAYTEXT));
    } else if (background.From == Colour::Source::Own) {
        SetTextColor(context, RGB(0, 0, 0)); // a light one
    } else {
        SetTextColor(context, GetSysColor(isField ? COLOR_WINDOWTEXT : COLOR_BTNTEXT));
    }
    SetBkColor(context, ColourOf(background));
    return reinterpret_cast<INT_PTR>(BrushOf(context, background));
}

FormWindow::FormWindow(Form& Shown) : m_system(new System(*this, Shown)) {}

FormWindow::~FormWindow() = default;

bool FormWindow::RunModal(FormWindow* Owner)
{
    std::optional<NoOwner> noOwner;
    if (Owner != nullptr) {
        m_system->Owner = Owner->m_system.get();
    } else {
        noOwner.emplace();
    }
    const EmptyTemplate empty;
    DialogBoxIndirectParamW(nullptr, &empty.Header, noOwner ? noOwner->Window() : m_system->Owner->Dialog,
                            &System::DialogProcedure, reinterpret_cast<LPARAM>(m_system.get()));
    if (m_system->Thrown) {
        std::rethrow_exception(m_system->Thrown);
    }
    return m_system->IsShown;
}

void FormWindow::Close()
{
    m_system->Close();
}

void FormWindow::ShowText(const Control& Changed)
{
    if (Changed.Look.Kind == ControlKind::DropDownList) { // it shows the selected line
        return;
    }
    m_system->Quietly(Changed, [&](HWND window) {
        SetWindowTextW(window, Changed.Text().c_str());
        if (Changed.Look.Kind == ControlKind::Log) {
            const auto end = static_cast<WPARAM>(GetWindowTextLengthW(window));
            SendMessageW(window, EM_SETSEL, end, static_cast<LPARAM>(end));
            SendMessageW(window, EM_SCROLLCARET, 0, 0);
        }
    });
}

void FormWindow::ShowEnabled(const Control& Changed)
{
    EnableWindow(m_system->WindowOf(Changed), Changed.IsEnabled() ? TRUE : FALSE);
}

void FormWindow::ShowBackground(const Control& Changed)
{
    InvalidateRect(m_system->WindowOf(Changed), nullptr, TRUE);
}

void FormWindow::ShowLines(const Control& Changed)
{
    m_system->Quietly(Changed, [&](HWND window) {
        SendMessageW(window, CB_RESETCONTENT, 0, 0);
        for (const std::wstring& line : Changed.Lines()) {
            SendMessageW(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
        }
    });
    ShowSelectedLine(Changed);
    ShowText(Changed); // a text that isn't one of the lines
}

void FormWindow::ShowSelectedLine(const Control& Changed)
{
    m_system->Quietly(Changed, [&](HWND window) {
        SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(Changed.SelectedLine()), 0);
    });
}

void FormWindow::ShowTimer()
{
    const int interval = m_system->Model.TimerInterval();
    if (interval != 0) {
        SetTimer(m_system->Dialog, TimerId, static_cast<UINT>(interval), nullptr);
    } else {
        KillTimer(m_system->Dialog, TimerId);
    }
}

void FormWindow::ShowCloseBox()
{
    EnableMenuItem(GetSystemMenu(m_system->Dialog, FALSE), SC_CLOSE,
                   m_system->Model.HasWorkingCloseBox() ? MF_ENABLED : MF_GRAYED);
}

void FormWindow::SetFocus(const Control& Focused)
{
    // Through the dialog manager, which also marks the default button.
    SendMessageW(m_system->Dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(m_system->WindowOf(Focused)),
                 TRUE);
}

void FormWindow::ShowNow(const Control& Shown)
{
    UpdateWindow(m_system->WindowOf(Shown));
    MSG event{};
    for (int left = MostEvents; left > 0 && PeekMessageW(&event, nullptr, 0, 0, PM_REMOVE) != FALSE; --left) {
        if (event.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(event.wParam)); // for the loops outside
            return;
        }
        // An owner is disabled meanwhile: no key is meant for it.
        if (IsDialogMessageW(m_system->Dialog, &event) == FALSE) {
            TranslateMessage(&event);
            DispatchMessageW(&event);
        }
    }
}

} // namespace acg
