// What only windows can show of the dialogs: they are shown on the thread of the test, and used by keys as a
// person would, from a thread beside it. It needs a display.
#include "dialogs/frmConfigure.h"
#include "encoder/Encoder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <windows.h>

namespace acg
{

namespace
{

/// Positions in the tab order, frame and labels counted.
enum Position {
    Device = 2,
    AutoDetect = 4,
    Baudrate = 6,
    Protocol = 8,
    Timeout = 10,
    OK,
    DefaultValues,
    TestSettings,
    Cancel
};
// And those of the test dialog.
constexpr int Log = 0;
constexpr int TestOK = 1;

struct Language {
    const wchar_t* Name;
    const wchar_t* ConfigureCaption;
    const wchar_t* TestCaption;
};
constexpr Language English = {L"english", L"ACG Encoder Configuration", L"ACG Encoder Test"};
constexpr Language French = {L"francais", L"Configuration de l'encodeur ACG", L"Test de l'encodeur ACG"};

void Await(const std::string& what, const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("waited in vain for " + what);
        }
        Sleep(10);
    }
}

/// Keys go to the window that has the focus, whichever it is.
void Send(int key, DWORD flags)
{
    INPUT input{.type = INPUT_KEYBOARD};
    input.ki.wVk = static_cast<WORD>(key);
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}
void Type(const std::vector<int>& keys)
{
    for (const int key : keys) {
        Send(key, 0);
        Send(key, KEYEVENTF_KEYUP);
    }
}
void TypeWithAlt(int key)
{
    Send(VK_MENU, 0);
    Type({key});
    Send(VK_MENU, KEYEVENTF_KEYUP);
}

/// Moves the mouse over a line of a list that is open, and waits until it is the selected one.
void PointAt(HWND box, int line)
{
    COMBOBOXINFO parts{.cbSize = sizeof parts};
    GetComboBoxInfo(box, &parts);
    RECT area{};
    SendMessageW(parts.hwndList, LB_GETITEMRECT, static_cast<WPARAM>(line), reinterpret_cast<LPARAM>(&area));
    MapWindowPoints(parts.hwndList, nullptr, reinterpret_cast<POINT*>(&area), 2);
    SetCursorPos(area.left + 5, area.top + 5);
    Await("a line to be selected", [&] { return SendMessageW(box, CB_GETCURSEL, 0, 0) == line; });
}

/// A window that is open and has the focus.
class Opened
{
public:
    explicit Opened(const wchar_t* caption)
    {
        Await("a window to open", [&] {
            Window = FindWindowW(nullptr, caption);
            return Window != nullptr && IsWindowVisible(Window) != FALSE && HasFocus();
        });
    }

    HWND Window = nullptr;

    [[nodiscard]] bool HasFocus() const { return Info().hwndActive == Window; }
    [[nodiscard]] HWND Child(int position) const
    {
        HWND child = GetWindow(Window, GW_CHILD);
        for (; position > 0; --position) {
            child = GetWindow(child, GW_HWNDNEXT);
        }
        return child;
    }
    void AwaitFocus(int position) const
    {
        Await("the focus at " + std::to_string(position), [&] {
            const HWND focus = Info().hwndFocus;
            return focus == Child(position) ||
                   GetParent(focus) == Child(position); // the field in a combo box
        });
    }
    void Focus(int position) const
    {
        SendMessageW(Window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Child(position)), TRUE);
        AwaitFocus(position);
    }
    [[nodiscard]] std::wstring Text(int position) const
    {
        wchar_t text[2000] = L"";
        SendMessageW(Child(position), WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
        return text;
    }

private:
    [[nodiscard]] static GUITHREADINFO Info()
    {
        GUITHREADINFO info{.cbSize = sizeof info};
        GetGUIThreadInfo(0, &info); // of the thread in the foreground
        return info;
    }
};

class RealWindowsTest : public testing::Test
{
protected:
    static DWORD WINAPI Run(void* body)
    {
        (*static_cast<const std::function<void()>*>(body))();
        return 0;
    }
    static void Join(HANDLE thread)
    {
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }

    /// Shows something, and lets a person act on it until it is closed. Where that comes to no end, the
    /// windows are closed.
    static void While(const std::function<void()>& show, const std::function<void()>& act)
    {
        std::atomic<bool> closed = false;
        const std::function<void()> person = [&, shower = GetCurrentThreadId()] {
            try {
                act();
                Await("the windows to close", [&] { return closed.load(); });
            } catch (const std::exception& failed) {
                ADD_FAILURE() << failed.what();
                PostThreadMessageW(shower, WM_QUIT, 0, 0);
            }
        };
        const std::unique_ptr<void, void (*)(HANDLE)> thread(
            CreateThread(nullptr, 0, &Run, const_cast<std::function<void()>*>(&person), 0, nullptr), &Join);
        show();
        closed = true;
    }

    sceReturnCode Configure(const std::function<void(const Opened&)>& act, const Language& in = English)
    {
        sceReturnCode result = sceError;
        While([&] { result = encoder.Configure(in.Name); }, [&] { act(Opened(in.ConfigureCaption)); });
        return result;
    }

    /// Opens the test dialog and waits for its end, which gives its button the focus.
    static Opened RunTest(const Language& in = English)
    {
        TypeWithAlt('T');
        Opened test(in.TestCaption);
        test.AwaitFocus(TestOK);
        return test;
    }

    void TearDown() override
    {
        duringCall = [](ReaderFunction) {}; // the encoder closes itself after the test's variables have gone
        MSG left{};
        while (PeekMessageW(&left, nullptr, 0, 0, PM_REMOVE) != FALSE) {}
    }

    /// Called on the thread of the dialogs, inside each call of the library.
    std::function<void(ReaderFunction)> duringCall = [](ReaderFunction) {};
    Library simulator{"ACGReader330"};
    Encoder encoder{ReaderDLL([this](ReaderFunction function) {
                        duringCall(function);
                        return simulator.Find(Name(function));
                    }),
                    std::chrono::steady_clock::now};
};

TEST_F(RealWindowsTest, TabGoesThroughWhatIsEnabledInOrder)
{
    Configure([](const Opened& dialog) {
        const auto tabThrough = [&](std::initializer_list<int> positions) {
            for (const int position : positions) {
                dialog.AwaitFocus(position);
                Type({VK_TAB});
            }
        };
        tabThrough({Device, AutoDetect, Timeout, OK, DefaultValues, TestSettings, Cancel, Device});
        dialog.AwaitFocus(AutoDetect);
        Type({VK_HOME}); // no detection
        tabThrough({AutoDetect, Baudrate, Protocol, Timeout});
        dialog.AwaitFocus(OK);
        Type({VK_ESCAPE});
    });
}

TEST_F(RealWindowsTest, AccessKeysTypingAndEnterBringTheValuesIntoTheEncoder)
{
    const struct {
        int Position;
        char EnglishKey;
        char FrenchKey;
        std::vector<int> Typed;
    } fields[] = {{AutoDetect, 'A', 'D', {VK_HOME}},
                  {Baudrate, 'S', 'V', {VK_DOWN, VK_DOWN}},
                  {Protocol, 'P', 'R', {'B'}},
                  {Timeout, 'M', 'M', {'1', 'A', '2', 'Z', '3', VK_SPACE, VK_OEM_MINUS, VK_BACK}},
                  {Device, 'C', 'P', {'L', 'P', 'T', '1'}}};
    for (const Language& in : {English, French}) {
        encoder.Parameters(L"Device=com1;Autodetect=1;Baud rate=9600;Timeout=2200");
        frmConfigure::OfThread().Protocol = 0;
        const auto act = [&](const Opened& dialog) {
            for (const auto& field : fields) {
                TypeWithAlt(in.Name == English.Name ? field.EnglishKey : field.FrenchKey);
                dialog.AwaitFocus(field.Position);
                Type(field.Typed);
            }
            Type({VK_RETURN});
        };
        EXPECT_EQ(Configure(act, in), sceSuccess);
        EXPECT_EQ(encoder.Parameters(), L"Encoding capabilities=Mifare Classic, Mifare Ultralight\r\n"
                                        L"Device=lpt1\r\nAutodetect=0\r\nBaud rate=38400\r\nTimeout=12");
        EXPECT_EQ(frmConfigure::OfThread().Protocol, 1);
    }
}

TEST_F(RealWindowsTest, ListThatClosesStoresWhatItsBoxShows)
{
    constexpr int nowhere = -1;
    const struct {
        const wchar_t* Detection;
        int Position;
        std::vector<int> Typed; // before the list is opened
        int PointedLine;
        int ClosingKey;
        std::wstring Settings;
    } cases[] = {{L"1", Device, {'C', 'O', 'M'}, nowhere, VK_ESCAPE, L"Device=COM1\r\nAutodetect=1"},
                 {L"1", AutoDetect, {}, 0, VK_TAB, L"Autodetect=0"},
                 {L"0", Baudrate, {}, 2, VK_TAB, L"Baud rate=38400"}};
    for (const auto& row : cases) {
        encoder.Parameters(std::wstring(L"Device=com2;Baud rate=9600;Autodetect=") + row.Detection);
        const auto act = [&](const Opened& dialog) {
            const HWND box = dialog.Child(row.Position);
            dialog.Focus(row.Position);
            Type(row.Typed);
            TypeWithAlt(VK_DOWN);
            Await("the list", [&] { return SendMessageW(box, CB_GETDROPPEDSTATE, 0, 0) != FALSE; });
            if (row.PointedLine != nowhere) {
                PointAt(box, row.PointedLine);
            }
            Type({row.ClosingKey});
            Await("its end", [&] { return SendMessageW(box, CB_GETDROPPEDSTATE, 0, 0) == FALSE; });
            Type({VK_RETURN});
        };
        EXPECT_EQ(Configure(act), sceSuccess);
        EXPECT_NE(encoder.Parameters().find(row.Settings), std::wstring::npos) << row.Position;
    }
}

TEST_F(RealWindowsTest, BaudRateAndProtocolChangeTheirColours)
{
    constexpr int menu = COLOR_MENU;
    const COLORREF before = GetSysColor(menu);
    constexpr COLORREF pink = RGB(0xFF, 0x80, 0xC0);
    SetSysColors(1, &menu, &pink);
    Configure([](const Opened& dialog) {
        const auto awaitColour = [&](COLORREF colour) {
            for (const int position : {Baudrate, Protocol}) {
                const HDC context = GetDC(dialog.Child(position));
                Await("a colour", [&] { return GetPixel(context, /*x=*/100, /*y=*/10) == colour; });
                ReleaseDC(dialog.Child(position), context);
            }
        };
        awaitColour(pink);
        Type({VK_TAB, VK_HOME});
        awaitColour(GetSysColor(COLOR_WINDOW));
        Type({VK_END});
        awaitColour(pink);
        Type({VK_ESCAPE});
    });
    SetSysColors(1, &menu, &before);
}

TEST_F(RealWindowsTest, CloseBoxIsNotCancel)
{
    frmConfigure::OfThread().OKPressed = true;
    EXPECT_EQ(Configure([](const Opened&) { TypeWithAlt(VK_F4); }), sceSuccess);
    EXPECT_EQ(Configure([](const Opened&) { Type({VK_ESCAPE}); }), sceCanceled);
}

TEST_F(RealWindowsTest, TestRunsToItsBannerOnTopAndLeadsBack)
{
    duringCall = [](ReaderFunction) {
        const HWND window = FindWindowW(nullptr, English.TestCaption);
        EXPECT_TRUE(GetMenuState(GetSystemMenu(window, FALSE), SC_CLOSE, MF_BYCOMMAND) & MF_GRAYED);
        PostMessageW(window, WM_CLOSE, 0, 0);
    };
    Configure([](const Opened& dialog) {
        SetWindowPos(dialog.Window, nullptr, 900, 700, 0, 0, SWP_NOSIZE); // in the corner of the screen
        const Opened test = RunTest(); // the close box was tried at each of its calls
        RECT work{};
        RECT area{};
        RECT both{};
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
        GetWindowRect(test.Window, &area);
        UnionRect(&both, &work, &area);
        EXPECT_TRUE(EqualRect(&both, &work)); // wholly on the screen
        EXPECT_FALSE(IsWindowEnabled(dialog.Window));
        const auto end = test.Text(Log).size();
        EXPECT_EQ(SendMessageW(test.Child(Log), EM_GETSEL, 0, 0), MAKELRESULT(end, end));
        // Escape does nothing and Enter closes, from the log as well, which a click gives the focus.
        test.Focus(Log);
        Type({VK_ESCAPE, VK_RETURN});
        Await("the test dialog to close", [&] { return IsWindow(test.Window) == FALSE; });
        dialog.AwaitFocus(TestSettings);
        Type({VK_ESCAPE});
    });
}

TEST_F(RealWindowsTest, RequestToQuitWaitsForTheEndOfTheTestAndKeepsItsCode)
{
    ReaderFunction last{};
    duringCall = [&](ReaderFunction function) {
        last = function;
        if (function == ReaderFunction::OpenComm) {
            PostQuitMessage(7);
        }
    };
    Configure([](const Opened&) { TypeWithAlt('T'); });
    EXPECT_EQ(last, ReaderFunction::CloseComm);
    MSG quit{};
    ASSERT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(quit.wParam, 7U);
}

/// In Tahoma, with "&" taken for what it is.
void ExpectTextFits(HWND control, const std::wstring& text)
{
    const HDC context = GetDC(control);
    SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    wchar_t face[LF_FACESIZE] = L"";
    GetTextFaceW(context, LF_FACESIZE, face);
    EXPECT_STREQ(face, L"Tahoma");
    RECT needed{};
    DrawTextW(context, text.c_str(), -1, &needed, DT_CALCRECT | DT_SINGLELINE);
    ReleaseDC(control, context);
    RECT area{};
    GetClientRect(control, &area);
    EXPECT_LE(needed.right, area.right) << testing::PrintToString(text);
    EXPECT_LE(needed.bottom, area.bottom) << testing::PrintToString(text);
}

TEST_F(RealWindowsTest, EveryTextIsTahomaAndFitsItsControl)
{
    for (const Language& in : {English, French}) {
        const auto act = [&](const Opened& dialog) {
            for (int position = 0; position <= Cancel; ++position) {
                ExpectTextFits(dialog.Child(position), dialog.Text(position));
            }
            const Opened test = RunTest(in);
            ExpectTextFits(test.Child(TestOK), test.Text(TestOK));
            ExpectTextFits(test.Child(Log), L"");
            constexpr int linesOfTheTest = 13; // more if one were broken
            EXPECT_EQ(SendMessageW(test.Child(Log), EM_GETLINECOUNT, 0, 0), linesOfTheTest);
            Type({VK_RETURN});
            Await("the first dialog to come back", [&] { return dialog.HasFocus(); });
            Type({VK_ESCAPE});
        };
        Configure(act, in);
    }
}

TEST_F(RealWindowsTest, FormWithNothingEnabledIsModalCentredAndClosed)
{
    const HWND host = CreateWindowExW(0, L"STATIC", L"Host", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                                      nullptr, nullptr, nullptr);
    Form form({.Width = 3000, .Height = 1500, .FontPoints = 9});
    form.Caption = L"Form";
    form.Add({"cmdOff", ControlKind::Button, {0, 0, 1500, 420}}).Enable(false);
    const auto act = [&] {
        const Opened shown(L"Form");
        EXPECT_FALSE(IsWindowEnabled(host));
        EXPECT_FALSE(IsWindowVisible(GetWindow(shown.Window, GW_OWNER))); // keeps it out of the task bar
        constexpr LONG resizing = WS_MINIMIZEBOX | WS_MAXIMIZEBOX | WS_THICKFRAME;
        EXPECT_EQ(GetWindowLongW(shown.Window, GWL_STYLE) & resizing, 0);
        RECT client{};
        GetClientRect(shown.Window, &client);
        EXPECT_EQ(client.right, 2 * client.bottom);
        RECT window{};
        RECT screen{};
        GetWindowRect(shown.Window, &window);
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
        EXPECT_NEAR(window.left + window.right, screen.right, 1);
        EXPECT_NEAR(window.top + window.bottom, screen.bottom, 1);
        TypeWithAlt(VK_F4);
    };
    While([&] { EXPECT_TRUE(form.ShowModal()); }, act);
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_EQ(GetActiveWindow(), host);
    DestroyWindow(host);
}

TEST_F(RealWindowsTest, ExceptionOfAHandlerClosesItsFormsAndGoesOn)
{
    Form outer({.Width = 3000, .Height = 1500, .FontPoints = 9});
    Form inner(outer.Look);
    outer.Caption = L"Outer";
    inner.Caption = L"Inner";
    outer.DefaultButton = &outer.Add({"cmdInner", ControlKind::Button, {0, 0, 1500, 420}});
    outer.DefaultButton->OnPress = [&] { inner.ShowModal(&outer); };
    inner.Add({"txtKeys", ControlKind::TextField, {0, 0, 1500, 420}}).OnEdit = [] {
        throw std::runtime_error("typed");
    };
    const auto act = [] {
        const Opened first(L"Outer");
        Type({VK_RETURN});
        const Opened second(L"Inner");
        Type({'X'});
    };
    While([&] { EXPECT_THROW(outer.ShowModal(), std::runtime_error); }, act);
    EXPECT_FALSE(inner.IsOpen() || outer.IsOpen());
    EXPECT_EQ(FindWindowW(nullptr, L"Outer"), nullptr);
}

} // namespace
} // namespace acg
