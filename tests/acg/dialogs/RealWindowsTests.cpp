// What only windows show of the dialogs, used by keys, from a thread beside the test's. It needs a display.
#include "abi/ACGReader330.h"
#include "acg/dialogs/frmConfigure.h"
#include "acg/encoder/Encoder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <utility>
#include <windows.h>

using namespace acg;

namespace
{

// The ids of the controls that can have the focus, and those of the test dialog.
constexpr int Device = 102, AutoDetect = 104, Baudrate = 106, Protocol = 108, Timeout = 110, OK = 111,
              Defaults = 112, TestSettings = 113, Cancel = 114, Log = 100, TestOK = 101;

/// The program ends if it waits in vain: nothing else would close the windows.
void Await(const std::string& what, const std::function<bool()>& condition)
{
    for (int tries = 0; !condition(); ++tries) {
        if (tries == 3000) {
            throw std::runtime_error("waited in vain for " + what);
        }
        Sleep(10);
    }
}

/// The window with the focus, once that is the control with that id: in a combo box, its field.
HWND AwaitFocus(int id)
{
    GUITHREADINFO front{.cbSize = sizeof front};
    Await("the focus of " + std::to_string(id), [&front, id] {
        GetGUIThreadInfo(0, &front);
        const HWND focus = front.hwndFocus;
        return IsWindowVisible(focus) && (GetDlgCtrlID(focus) == id || GetDlgCtrlID(GetParent(focus)) == id);
    });
    return front.hwndFocus;
}

/// Posts to a control, once it has the focus, the messages that keys become. They aren't pressed on the
/// keyboard: Wine releases what is held there, Alt above all, whenever the display tells it which keys a
/// person holds.
void Type(int id, UINT message, const std::vector<WPARAM>& keys)
{
    const HWND focus = AwaitFocus(id);
    for (const WPARAM key : keys) {
        PostMessageW(focus, message, key, 0);
    }
}

void AwaitColour(HWND control, int x, COLORREF colour)
{
    const HDC context = GetDC(control);
    Await("a colour", [=] { return GetPixel(context, x, 10) == colour; });
    ReleaseDC(control, context);
}

DWORD WINAPI Act(void* act)
{
    const HWND dialog = GetAncestor(AwaitFocus(Device), GA_ROOT);
    (*static_cast<std::function<void(HWND)>*>(act))(dialog);
    Await("the dialog to close", [dialog] { return IsWindow(dialog) == FALSE; });
    return 0;
}

class RealWindowsTest : public testing::Test
{
protected:
    /// Lets a person act on the configuration dialog. sceError stands for an exception.
    sceReturnCode Configure(std::function<void(HWND)> act)
    {
        const HANDLE person = CreateThread(nullptr, 0, &Act, &act, 0, nullptr);
        sceReturnCode result = sceError;
        try {
            result = encoder.Configure(L"english");
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
                        return simulator.Find(NameOf(function));
                    }),
                    std::chrono::steady_clock::now};
};

TEST_F(RealWindowsTest, KeysLeadThroughBothDialogsAndBringTheValuesIntoTheEncoder)
{
    const std::tuple<int, WPARAM, UINT, std::vector<WPARAM>> fields[] = {
        {AutoDetect, 'A', WM_KEYDOWN, {VK_HOME}},
        {Baudrate, 'S', WM_KEYDOWN, {VK_DOWN, VK_DOWN}},
        {Protocol, 'P', WM_CHAR, {'B'}},
        {Timeout, 'M', WM_CHAR, {'1', 'A', '2', 'Z', '3', ' ', '-', '\b'}},
        {Device, 'C', WM_CHAR, {'L', 'P', 'T', '1'}}};
    const int menu = COLOR_MENU; // made one that no other is
    const COLORREF before = GetSysColor(menu), pink = RGB(0xFF, 0x80, 0xC0);
    SetSysColors(1, &menu, &pink);
    duringCall = [](ReaderFunction) {
        const HWND test = FindWindowW(nullptr, L"ACG Encoder Test");
        EXPECT_TRUE(test && GetMenuState(GetSystemMenu(test, FALSE), SC_CLOSE, MF_BYCOMMAND) & MF_GRAYED);
        PostMessageW(test, WM_CLOSE, 0, 0);
    };
    const auto act = [&](HWND dialog) {
        SetWindowPos(dialog, nullptr, 650, 600, 0, 0, SWP_NOSIZE); // in the corner of the screen
        AwaitColour(GetDlgItem(dialog, Protocol), 100, pink);
        for (const int id : {Device, AutoDetect, Timeout, OK, Defaults, TestSettings, Cancel}) {
            Type(id, WM_KEYDOWN, {VK_TAB});
        }
        Type(Device, WM_SYSCHAR, {'T'});
        const HWND test = GetAncestor(AwaitFocus(TestOK), GA_ROOT); // its end
        RECT area{};
        GetWindowRect(test, &area);
        EXPECT_EQ(area.right, GetSystemMetrics(SM_CXSCREEN));
        AwaitColour(test, 1, RGB(0xF8, 0xF8, 0xF0)); // beside the log
        const HWND log = GetDlgItem(test, Log);
        const LRESULT end = SendMessageW(log, WM_GETTEXTLENGTH, 0, 0);
        EXPECT_EQ(SendMessageW(log, EM_GETSEL, 0, 0), MAKELRESULT(end, end));
        // Escape does nothing and Enter closes, from the log as well, which a click gives the focus.
        SendMessageW(test, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(log), TRUE);
        Type(Log, WM_KEYDOWN, {VK_ESCAPE, VK_RETURN});
        int from = TestSettings;
        for (const auto& [id, accessKey, message, keys] : fields) {
            Type(std::exchange(from, id), WM_SYSCHAR, {accessKey}); // with Alt
            Type(id, message, keys);
        }
        AwaitColour(GetDlgItem(dialog, Protocol), 100, GetSysColor(COLOR_WINDOW));
        Type(Device, WM_KEYDOWN, {VK_RETURN});
    };
    encoder.Parameters(L"Device=com1;Autodetect=1;Baud rate=9600;Timeout=2200");
    EXPECT_EQ(Configure(act), sceSuccess);
    EXPECT_TRUE(
        encoder.Parameters().ends_with(L"\r\nDevice=LPT1\r\nAutodetect=0\r\nBaud rate=38400\r\nTimeout=12"));
    EXPECT_EQ(frmConfigure::OfThread().Protocol, 1);
    SetSysColors(1, &menu, &before);
    duringCall = [](ReaderFunction) {}; // an encoder's end calls the library, too
}

TEST_F(RealWindowsTest, ListThatClosesStoresWhatItsBoxShowsAndTheCloseBoxIsNotCancel)
{
    const auto pickAndClose = [](HWND dialog) {
        for (const int id : {Device, AutoDetect}) {
            SendDlgItemMessageW(dialog, id, CB_SHOWDROPDOWN, TRUE, 0);
            SendDlgItemMessageW(dialog, id, CB_SETCURSEL, 0, 0); // as the mouse above the first line does
            SendDlgItemMessageW(dialog, id, CB_SHOWDROPDOWN, FALSE, 0);
        }
        Type(Device, WM_KEYDOWN, {VK_RETURN});
    };
    encoder.Parameters(L"Device=com2;Autodetect=1");
    EXPECT_EQ(Configure(pickAndClose), sceSuccess);
    EXPECT_NE(encoder.Parameters().find(L"Device=COM1\r\nAutodetect=0"), std::wstring::npos);
    EXPECT_EQ(Configure([](HWND form) { PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0); }), sceSuccess);
    EXPECT_EQ(Configure([](HWND) { Type(Device, WM_KEYDOWN, {VK_ESCAPE}); }), sceCanceled);
}

TEST_F(RealWindowsTest, FormsAreModalAndAnExceptionOfAHandlerClosesThemAndGoesOn)
{
    const HWND host =
        CreateWindowW(L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    duringCall = [](ReaderFunction) { throw std::runtime_error("in a handler"); };
    const auto act = [host](HWND dialog) {
        EXPECT_FALSE(IsWindowEnabled(host));
        EXPECT_FALSE(IsWindowVisible(GetWindow(dialog, GW_OWNER))); // keeps it out of the task bar
        RECT area{};
        GetClientRect(dialog, &area);
        EXPECT_EQ(area.right, 449); // 6735 twips at 96 dpi
        Type(Device, WM_SYSCHAR, {'T'});
    };
    EXPECT_EQ(Configure(act), sceError);
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_EQ(GetActiveWindow(), host);
    DestroyWindow(host);
}

} // namespace
