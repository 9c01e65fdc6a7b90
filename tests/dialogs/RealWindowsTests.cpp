// What only windows can show of the dialogs. They open on the thread of the test; a person on a thread beside
// it uses the keyboard. It needs a display.
#include "dialogs/frmConfigure.h"
#include "encoder/Encoder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <windows.h>

namespace acg
{

namespace
{

// The ids of the controls that can have the focus, and those of the test dialog.
constexpr int Device = 102, AutoDetect = 104, Baudrate = 106, Protocol = 108, Timeout = 110;
constexpr int OK = 111, Defaults = 112, TestSettings = 113, Cancel = 114;
constexpr int Log = 100, TestOK = 101;

/// The program ends where it waits in vain: nothing else would close the windows.
void Await(const std::string& what, const std::function<bool()>& condition)
{
    for (int tries = 0; !condition(); ++tries) {
        if (tries == 1000) {
            throw std::runtime_error("waited in vain for " + what);
        }
        Sleep(10);
    }
}

/// Presses and releases keys, for whichever window has the focus. Alt is held until the last of them.
void Type(const std::vector<BYTE>& keys)
{
    for (const BYTE key : keys) {
        keybd_event(key, 0, 0, 0);
        keybd_event(key, 0, key == VK_MENU ? 0 : KEYEVENTF_KEYUP, 0);
    }
    keybd_event(VK_MENU, 0, KEYEVENTF_KEYUP, 0);
}

/// The form in front, once its control with that id has the focus.
HWND AwaitFocus(int id)
{
    GUITHREADINFO front{.cbSize = sizeof front};
    Await("the focus of " + std::to_string(id), [&front, id] {
        GetGUIThreadInfo(0, &front);
        const HWND focus = front.hwndFocus; // in a combo box, its field
        return IsWindowVisible(focus) && (GetDlgCtrlID(focus) == id || GetDlgCtrlID(GetParent(focus)) == id);
    });
    return front.hwndActive;
}

void AwaitColour(HWND control, int x, COLORREF colour)
{
    const HDC context = GetDC(control);
    Await("a colour", [=] { return GetPixel(context, x, 10) == colour; });
    ReleaseDC(control, context);
}

DWORD WINAPI Act(void* act)
{
    const HWND dialog = AwaitFocus(Device);
    (*static_cast<std::function<void(HWND)>*>(act))(dialog);
    Await("the dialog to close", [dialog] { return IsWindow(dialog) == FALSE; });
    return 0;
}

class RealWindowsTest : public testing::Test
{
protected:
    /// Lets a person act on the configuration dialog. sceError stands for an exception.
    sceReturnCode Configure(std::function<void(HWND)> act, const wchar_t* language = L"english")
    {
        const HANDLE person = CreateThread(nullptr, 0, &Act, &act, 0, nullptr);
        sceReturnCode result = sceError;
        try {
            result = encoder.Configure(language);
        } catch (const std::runtime_error&) {
        }
        WaitForSingleObject(person, INFINITE);
        CloseHandle(person);
        return result;
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

TEST_F(RealWindowsTest, KeysLeadThroughBothDialogsAndBringTheValuesIntoTheEncoder)
{
    const std::tuple<int, BYTE, BYTE, std::vector<BYTE>> fields[] = {
        {AutoDetect, 'A', 'D', {VK_HOME}},
        {Baudrate, 'S', 'V', {VK_DOWN, VK_DOWN}},
        {Protocol, 'P', 'R', {'B'}},
        {Timeout, 'M', 'M', {'1', 'A', '2', 'Z', '3', VK_SPACE, VK_OEM_MINUS, VK_BACK}},
        {Device, 'C', 'P', {'L', 'P', 'T', '1'}}};
    for (const bool french : {false, true}) {
        duringCall = [french](ReaderFunction) {
            const HWND test = FindWindowW(nullptr, french ? L"Test de l'encodeur ACG" : L"ACG Encoder Test");
            EXPECT_TRUE(GetMenuState(GetSystemMenu(test, FALSE), SC_CLOSE, MF_BYCOMMAND) & MF_GRAYED);
            PostMessageW(test, WM_CLOSE, 0, 0);
        };
        const auto act = [&](HWND dialog) {
            AwaitColour(GetDlgItem(dialog, Protocol), 100, GetSysColor(COLOR_MENU));
            for (const int id : {Device, AutoDetect, Timeout, OK, Defaults, TestSettings, Cancel}) {
                AwaitFocus(id);
                Type({VK_TAB});
            }
            for (const auto& [id, english, francais, typed] : fields) {
                Type({VK_MENU, french ? francais : english});
                AwaitFocus(id);
                Type(typed);
            }
            AwaitColour(GetDlgItem(dialog, Protocol), 100, GetSysColor(COLOR_WINDOW));
            SetWindowPos(dialog, nullptr, 900, 700, 0, 0, SWP_NOSIZE); // in the corner of the screen
            Type({VK_MENU, 'T'});
            const HWND test = AwaitFocus(TestOK); // its end
            RECT area{};
            GetWindowRect(test, &area);
            EXPECT_EQ(area.right, GetSystemMetrics(SM_CXSCREEN));
            EXPECT_EQ(area.bottom, GetSystemMetrics(SM_CYSCREEN));
            AwaitColour(test, 1, RGB(0xF8, 0xF8, 0xF0)); // beside the log
            const HWND log = GetDlgItem(test, Log);
            const LRESULT end = SendMessageW(log, WM_GETTEXTLENGTH, 0, 0);
            EXPECT_EQ(SendMessageW(log, EM_GETSEL, 0, 0), MAKELRESULT(end, end));
            // Escape does nothing and Enter closes, from the log as well, which a click gives the focus.
            SendMessageW(test, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(log), TRUE);
            Type({VK_ESCAPE, VK_RETURN});
            AwaitFocus(TestSettings);
            Type({VK_MENU, 'M'});
            AwaitFocus(Timeout);
            Type({VK_RETURN});
        };
        encoder.Parameters(L"Device=com1;Autodetect=1;Baud rate=9600;Timeout=2200");
        EXPECT_EQ(Configure(act, french ? L"francais" : L"english"), sceSuccess);
        EXPECT_TRUE(encoder.Parameters().ends_with(
            L"\r\nDevice=lpt1\r\nAutodetect=0\r\nBaud rate=38400\r\nTimeout=12"));
        EXPECT_EQ(std::exchange(frmConfigure::OfThread().Protocol, uint8_t{0}), 1);
    }
}

TEST_F(RealWindowsTest, ListThatClosesStoresWhatItsBoxShowsAndTheCloseBoxIsNotCancel)
{
    const auto pickAndClose = [](HWND dialog) {
        for (const int id : {Device, AutoDetect}) {
            SendDlgItemMessageW(dialog, id, CB_SHOWDROPDOWN, TRUE, 0);
            SendDlgItemMessageW(dialog, id, CB_SETCURSEL, 0, 0); // as the mouse above the first line does
            SendDlgItemMessageW(dialog, id, CB_SHOWDROPDOWN, FALSE, 0);
        }
        Type({VK_RETURN});
    };
    encoder.Parameters(L"Device=com2;Autodetect=1");
    EXPECT_EQ(Configure(pickAndClose), sceSuccess);
    EXPECT_NE(encoder.Parameters().find(L"Device=COM1\r\nAutodetect=0"), std::wstring::npos);
    const auto close = [](HWND dialog) { PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); };
    EXPECT_EQ(Configure(close), sceSuccess); // the last button's
    EXPECT_EQ(Configure([](HWND) { Type({VK_ESCAPE}); }), sceCanceled);
}

TEST_F(RealWindowsTest, FormsAreModalAndARequestToQuitAndAnExceptionCloseThemAndGoOn)
{
    const HWND host =
        CreateWindowW(L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    duringCall = [](ReaderFunction function) {
        if (function == ReaderFunction::OpenComm) {
            PostQuitMessage(7);
        } else if (function == ReaderFunction::CloseComm) { // the test runs to its end
            throw std::runtime_error("in a handler");
        }
    };
    const auto act = [host](HWND dialog) {
        EXPECT_FALSE(IsWindowEnabled(host));
        EXPECT_FALSE(IsWindowVisible(GetWindow(dialog, GW_OWNER))); // keeps it out of the task bar
        RECT area{};
        GetClientRect(dialog, &area);
        EXPECT_EQ(area.right, 449); // 6735 twips at 96 dpi
        LOGFONTW font{};
        GetObjectW(reinterpret_cast<HFONT>(SendDlgItemMessageW(dialog, OK, WM_GETFONT, 0, 0)), sizeof font,
                   &font);
        EXPECT_STREQ(font.lfFaceName, L"Tahoma");
        Type({VK_MENU, 'T'});
    };
    EXPECT_EQ(Configure(act), sceError);
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_EQ(GetActiveWindow(), host);
    DestroyWindow(host);
    MSG quit{};
    EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(quit.wParam, 7U);
}

} // namespace
} // namespace acg
