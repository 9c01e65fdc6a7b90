// What only windows can show of the dialogs: they are shown on the thread of the test, and used by keys and
// mouse as a person would, from a thread beside it. It needs a display.
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

// Positions in the tab order, frame and labels counted, and those of the test dialog.
constexpr int Device = 2, AutoDetect = 4, Baudrate = 6, Protocol = 8, Timeout = 10;
constexpr int OK = 11, Defaults = 12, TestSettings = 13, Cancel = 14;
constexpr int Log = 0, TestOK = 1;

void Await(const std::string& what, const std::function<bool()>& condition)
{
    for (int tries = 0; !condition(); ++tries) {
        if (tries == 1000) {
            throw std::runtime_error("waited in vain for " + what);
        }
        Sleep(10);
    }
}

/// Keys go to the window that has the focus, whichever it is.
void Type(const std::vector<int>& keys, bool withAlt = false)
{
    const auto send = [](int key, DWORD flags) {
        INPUT input{.type = INPUT_KEYBOARD};
        input.ki.wVk = static_cast<WORD>(key);
        input.ki.dwFlags = flags;
        SendInput(1, &input, sizeof input);
    };
    if (withAlt) {
        send(VK_MENU, 0);
    }
    for (const int key : keys) {
        send(key, 0);
        send(key, KEYEVENTF_KEYUP);
    }
    if (withAlt) {
        send(VK_MENU, KEYEVENTF_KEYUP);
    }
}

/// A window that is open and has the focus.
struct Opened {
    HWND Window = nullptr;

    explicit Opened(const wchar_t* caption)
    {
        Await("a window to open", [&] {
            Window = FindWindowW(nullptr, caption);
            return Window != nullptr && IsWindowVisible(Window) != FALSE && Focus().hwndActive == Window;
        });
    }
    [[nodiscard]] static GUITHREADINFO Focus()
    {
        GUITHREADINFO info{.cbSize = sizeof info};
        GetGUIThreadInfo(0, &info); // of the thread in the foreground
        return info;
    }
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
        Await("the focus at " + std::to_string(position), [&, child = Child(position)] {
            const HWND focus = Focus().hwndFocus;
            return focus == child || GetParent(focus) == child; // the field in a combo box
        });
    }
    void SetFocus(int position) const
    {
        SendMessageW(Window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Child(position)), TRUE);
        AwaitFocus(position);
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
    sceReturnCode Configure(const std::function<void(const Opened&)>& act, bool french = false)
    {
        sceReturnCode result = sceError;
        While(
            [&] { result = encoder.Configure(french ? L"francais" : L"english"); },
            [&] { act(Opened(french ? L"Configuration de l'encodeur ACG" : L"ACG Encoder Configuration")); });
        return result;
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

RECT AreaOf(HWND window)
{
    RECT area{};
    GetWindowRect(window, &area);
    return area;
}
RECT Screen()
{
    RECT area{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area;
}

/// In Tahoma, with "&" taken for what it is.
void ExpectTextFits(HWND control)
{
    wchar_t text[2000] = L"";
    SendMessageW(control, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
    const HDC context = GetDC(control);
    SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    wchar_t face[LF_FACESIZE] = L"";
    GetTextFaceW(context, LF_FACESIZE, face);
    EXPECT_STREQ(face, L"Tahoma");
    RECT needed{};
    DrawTextW(context, text, -1, &needed, DT_CALCRECT);
    ReleaseDC(control, context);
    RECT area{};
    GetClientRect(control, &area);
    EXPECT_TRUE(needed.right <= area.right && needed.bottom <= area.bottom) << testing::PrintToString(text);
}

TEST_F(RealWindowsTest, TabAccessKeysTypingAndEnterBringTheValuesIntoTheEncoder)
{
    const std::tuple<int, char, char, std::vector<int>> fields[] = {
        {AutoDetect, 'A', 'D', {VK_HOME}},
        {Baudrate, 'S', 'V', {VK_DOWN, VK_DOWN}},
        {Protocol, 'P', 'R', {'B'}},
        {Timeout, 'M', 'M', {'1', 'A', '2', 'Z', '3', VK_SPACE, VK_OEM_MINUS, VK_BACK}},
        {Device, 'C', 'P', {'L', 'P', 'T', '1'}}};
    for (const bool french : {false, true}) {
        encoder.Parameters(L"Device=com1;Autodetect=1;Baud rate=9600;Timeout=2200");
        const auto act = [&](const Opened& dialog) {
            for (int position = 0; position <= Cancel; ++position) {
                ExpectTextFits(dialog.Child(position));
            }
            const auto tabThrough = [&](std::initializer_list<int> positions) {
                for (const int position : positions) {
                    dialog.AwaitFocus(position);
                    Type({VK_TAB});
                }
            };
            tabThrough({Device, AutoDetect, Timeout, OK, Defaults, TestSettings, Cancel, Device});
            for (const auto& [position, english, francais, typed] : fields) {
                Type({french ? francais : english}, /*withAlt=*/true);
                dialog.AwaitFocus(position);
                Type(typed);
            }
            tabThrough({Device, AutoDetect, Baudrate, Protocol, Timeout});
            Type({VK_RETURN});
        };
        EXPECT_EQ(Configure(act, french), sceSuccess);
        EXPECT_TRUE(encoder.Parameters().ends_with(
            L"\r\nDevice=lpt1\r\nAutodetect=0\r\nBaud rate=38400\r\nTimeout=12"));
        EXPECT_EQ(std::exchange(frmConfigure::OfThread().Protocol, uint8_t{0}), 1);
    }
}

TEST_F(RealWindowsTest, ListThatClosesStoresWhatItsBoxShows)
{
    constexpr int nowhere = -1;
    const std::tuple<const wchar_t*, int, std::vector<int>, int, int, std::wstring> cases[] = {
        {L"1", Device, {'C', 'O', 'M'}, nowhere, VK_ESCAPE, L"Device=COM1\r\nAutodetect=1"},
        {L"1", AutoDetect, {}, /*pointed=*/0, VK_TAB, L"Autodetect=0"},
        {L"0", Baudrate, {}, /*pointed=*/2, VK_TAB, L"Baud rate=38400"}};
    for (const auto& [detection, position, typed, pointed, closingKey, settings] : cases) {
        encoder.Parameters(std::wstring(L"Device=com2;Baud rate=9600;Autodetect=") + detection);
        const auto act = [&, at = position, keys = typed, line = pointed,
                          key = closingKey](const Opened& dialog) {
            const HWND box = dialog.Child(at);
            dialog.SetFocus(at);
            Type(keys);
            Type({VK_DOWN}, /*withAlt=*/true);
            Await("the list", [&] { return SendMessageW(box, CB_GETDROPPEDSTATE, 0, 0) != FALSE; });
            if (line != nowhere) {
                COMBOBOXINFO parts{.cbSize = sizeof parts};
                GetComboBoxInfo(box, &parts);
                RECT area{};
                SendMessageW(parts.hwndList, LB_GETITEMRECT, static_cast<WPARAM>(line),
                             reinterpret_cast<LPARAM>(&area));
                MapWindowPoints(parts.hwndList, nullptr, reinterpret_cast<POINT*>(&area), 2);
                Await("its line", [&] {
                    area.left ^= 1; // the mouse must move
                    SetCursorPos(area.left + 5, area.top + 5);
                    return SendMessageW(box, CB_GETCURSEL, 0, 0) == line;
                });
            }
            Type({key});
            Await("its end", [&] { return SendMessageW(box, CB_GETDROPPEDSTATE, 0, 0) == FALSE; });
            Type({VK_RETURN});
        };
        EXPECT_EQ(Configure(act), sceSuccess);
        EXPECT_NE(encoder.Parameters().find(settings), std::wstring::npos) << position;
    }
}

TEST_F(RealWindowsTest, ListsChangeTheirColoursAndTheCloseBoxIsNotCancel)
{
    constexpr int menu = COLOR_MENU;
    const COLORREF before = GetSysColor(menu);
    const COLORREF pink = RGB(0xFF, 0x80, 0xC0);
    SetSysColors(1, &menu, &pink);
    frmConfigure::OfThread().OKPressed = true;
    const auto act = [pink](const Opened& dialog) {
        for (const auto& [colour, key] :
             {std::pair(pink, VK_HOME), std::pair(COLORREF{GetSysColor(COLOR_WINDOW)}, VK_END)}) {
            for (const int position : {Baudrate, Protocol}) {
                const HDC context = GetDC(dialog.Child(position));
                Await("a colour", [&, wanted = colour] { return GetPixel(context, 100, 10) == wanted; });
                ReleaseDC(dialog.Child(position), context);
            }
            dialog.SetFocus(AutoDetect);
            Type({key});
        }
        dialog.SetFocus(OK); // a list would take the key for itself
        Type({VK_F4}, /*withAlt=*/true);
    };
    EXPECT_EQ(Configure(act), sceSuccess);
    EXPECT_EQ(Configure([](const Opened&) { Type({VK_ESCAPE}); }), sceCanceled);
    SetSysColors(1, &menu, &before);
}

TEST_F(RealWindowsTest, TestRunsToItsEndOnTopAndLeadsBack)
{
    for (const bool french : {false, true}) {
        const wchar_t* caption = french ? L"Test de l'encodeur ACG" : L"ACG Encoder Test";
        duringCall = [&](ReaderFunction) {
            const HWND window = FindWindowW(nullptr, caption);
            EXPECT_TRUE(GetMenuState(GetSystemMenu(window, FALSE), SC_CLOSE, MF_BYCOMMAND) & MF_GRAYED);
            PostMessageW(window, WM_CLOSE, 0, 0);
        };
        const auto act = [&](const Opened& dialog) {
            SetWindowPos(dialog.Window, nullptr, 900, 700, 0, 0, SWP_NOSIZE); // in the corner of the screen
            Type({'T'}, /*withAlt=*/true);
            const Opened test(caption);
            test.AwaitFocus(TestOK); // its end
            EXPECT_LE(AreaOf(test.Window).right, Screen().right);
            EXPECT_LE(AreaOf(test.Window).bottom, Screen().bottom);
            EXPECT_FALSE(IsWindowEnabled(dialog.Window));
            ExpectTextFits(test.Child(Log));
            ExpectTextFits(test.Child(TestOK));
            const LRESULT end = SendMessageW(test.Child(Log), WM_GETTEXTLENGTH, 0, 0);
            EXPECT_EQ(SendMessageW(test.Child(Log), EM_GETSEL, 0, 0), MAKELRESULT(end, end));
            // Escape does nothing and Enter closes, from the log as well, which a click gives the focus.
            test.SetFocus(Log);
            Type({VK_ESCAPE, VK_RETURN});
            Await("the test dialog to close", [&] { return IsWindow(test.Window) == FALSE; });
            dialog.AwaitFocus(TestSettings);
            Type({VK_ESCAPE});
        };
        Configure(act, french);
    }
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
    Configure([](const Opened&) { Type({'T'}, /*withAlt=*/true); });
    EXPECT_EQ(last, ReaderFunction::CloseComm);
    MSG quit{};
    ASSERT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(quit.wParam, 7U);
}

TEST_F(RealWindowsTest, FormsAreModalAndAnExceptionOfAHandlerClosesThemAndGoesOn)
{
    const HWND host = CreateWindowExW(0, L"STATIC", L"Host", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                                      nullptr, nullptr, nullptr);
    Form outer({.Width = 3000, .Height = 1500, .FontPoints = 9});
    Form inner(outer.Look);
    outer.Caption = L"Outer";
    inner.Caption = L"Inner";
    outer.DefaultButton = &outer.Add({"cmdInner", ControlKind::Button, {0, 0, 1500, 420}});
    outer.DefaultButton->OnPress = [&] { inner.ShowModal(&outer); };
    inner.Add({"txtKeys", ControlKind::TextField, {0, 0, 1500, 420}}).OnEdit = [] {
        throw std::runtime_error("typed");
    };
    const auto act = [&] {
        const Opened first(L"Outer");
        EXPECT_FALSE(IsWindowEnabled(host));
        EXPECT_FALSE(IsWindowVisible(GetWindow(first.Window, GW_OWNER))); // keeps it out of the task bar
        const RECT area = AreaOf(first.Window);
        EXPECT_NEAR(area.left + area.right, Screen().right, 1);
        EXPECT_NEAR(area.top + area.bottom, Screen().bottom, 1);
        EXPECT_EQ(AreaOf(first.Child(0)).right - AreaOf(first.Child(0)).left, 100); // 1500 twips at 96 dpi
        Type({VK_RETURN});
        const Opened second(L"Inner");
        Type({'X'});
    };
    While([&] { EXPECT_THROW(outer.ShowModal(), std::runtime_error); }, act);
    EXPECT_FALSE(inner.IsOpen() || outer.IsOpen());
    EXPECT_EQ(FindWindowW(nullptr, L"Outer"), nullptr);
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_EQ(GetActiveWindow(), host);
    DestroyWindow(host);
}

} // namespace
} // namespace acg
