// The dialogs as windows of the system, used by keys as a person would: the forms are shown on the thread of
// the test, and the person is a thread beside it. It needs a display.
#include "dialogs/frmConfigure.h"
#include "encoder/Encoder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <stdexcept>
#include <thread>
#include <windows.h>

namespace acg
{

namespace
{

constexpr std::chrono::seconds Patience{10};
constexpr std::chrono::milliseconds Pause{10};

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
enum TestPosition {
    Log,
    TestOK
};

struct Language {
    const wchar_t* Name;
    const wchar_t* ConfigureCaption;
    const wchar_t* TestCaption;
    const wchar_t* Banner;
    const char* AccessKeys; ///< of the fields, from first to last
};
constexpr Language English = {L"english", L"ACG Encoder Configuration", L"ACG Encoder Test",
                              L"<< Successful test >>\r\n", "CASPM"};
constexpr Language French = {L"francais", L"Configuration de l'encodeur ACG", L"Test de l'encodeur ACG",
                             L"<< Test réussi >>\r\n", "PDVRM"};

void Await(const std::string& what, const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + Patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("waited in vain for " + what);
        }
        std::this_thread::sleep_for(Pause);
    }
}

/// Keys go to the window that has the focus, whichever it is.
void Type(std::initializer_list<int> keys, int held = 0)
{
    std::vector<INPUT> inputs;
    const auto add = [&inputs](int key, DWORD flags) {
        INPUT input{.type = INPUT_KEYBOARD};
        input.ki.wVk = static_cast<WORD>(key);
        input.ki.dwFlags = flags;
        inputs.push_back(input);
    };
    if (held != 0) {
        add(held, 0);
    }
    for (const int key : keys) {
        add(key, 0);
        add(key, KEYEVENTF_KEYUP);
    }
    if (held != 0) {
        add(held, KEYEVENTF_KEYUP);
    }
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
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

    [[nodiscard]] bool HasFocus() const
    {
        return GetForegroundWindow() == Window && Info().hwndActive == Window;
    }
    [[nodiscard]] HWND Child(int position) const
    {
        HWND child = GetWindow(Window, GW_CHILD);
        for (; position > 0; --position) {
            child = GetWindow(child, GW_HWNDNEXT);
        }
        return child;
    }
    [[nodiscard]] bool IsFocused(int position) const
    {
        const HWND focus = Info().hwndFocus;
        return focus == Child(position) || GetParent(focus) == Child(position); // the field in a combo box
    }
    void AwaitFocus(int position) const
    {
        Await("the focus at " + std::to_string(position), [&] { return IsFocused(position); });
    }
    [[nodiscard]] bool IsEnabled(int position) const { return IsWindowEnabled(Child(position)) != FALSE; }
    [[nodiscard]] std::wstring Text(int position) const
    {
        wchar_t text[2000] = L"";
        SendMessageW(Child(position), WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
        return text;
    }
    void AwaitText(int position, const wchar_t* text) const
    {
        Await("the text at " + std::to_string(position), [&] { return Text(position) == text; });
    }

private:
    [[nodiscard]] GUITHREADINFO Info() const
    {
        GUITHREADINFO info{.cbSize = sizeof info};
        GetGUIThreadInfo(GetWindowThreadProcessId(Window, nullptr), &info);
        return info;
    }
};

class RealWindowsTest : public testing::Test
{
protected:
    /// Shows something, and lets a person act on it until it is closed. Where that comes to no end, the
    /// windows are closed.
    static void While(const std::function<void()>& show, const std::function<void()>& act)
    {
        const DWORD shower = GetCurrentThreadId();
        std::atomic<bool> closed = false;
        std::thread person([&] {
            try {
                act();
                Await("the windows to close", [&] { return closed.load(); });
            } catch (const std::exception& failed) {
                ADD_FAILURE() << failed.what();
                PostThreadMessageW(shower, WM_QUIT, 0, 0);
            }
        });
        std::exception_ptr thrown;
        try {
            show();
        } catch (...) {
            thrown = std::current_exception();
        }
        closed = true;
        person.join();
        if (thrown) {
            std::rethrow_exception(thrown);
        }
    }

    sceReturnCode Configure(const std::function<void(const Opened&)>& act, const Language& in = English)
    {
        sceReturnCode result = sceError;
        While([&] { result = encoder.Configure(in.Name); }, [&] { act(Opened(in.ConfigureCaption)); });
        return result;
    }

    /// Opens the test dialog and waits for its end: the banner, and then the button.
    static Opened RunTest(const Language& in = English)
    {
        Type({'T'}, VK_MENU);
        Opened test(in.TestCaption);
        Await("the banner", [&] { return test.Text(Log).ends_with(in.Banner); });
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

TEST_F(RealWindowsTest, TabGoesThroughWhatIsEnabledInOrderAndEscapeCancels)
{
    const sceReturnCode result = Configure([](const Opened& dialog) {
        for (const int position :
             {Device, AutoDetect, Timeout, OK, DefaultValues, TestSettings, Cancel, Device}) {
            dialog.AwaitFocus(position);
            Type({VK_TAB});
        }
        dialog.AwaitFocus(AutoDetect);
        Type({VK_UP});
        dialog.AwaitText(AutoDetect, L"Disabled");
        for (const int position : {AutoDetect, Baudrate, Protocol, Timeout}) {
            dialog.AwaitFocus(position);
            Type({VK_TAB});
        }
        dialog.AwaitFocus(OK);
        Type({VK_ESCAPE});
    });
    EXPECT_EQ(result, sceCanceled);
    EXPECT_NE(encoder.Parameters().find(L"Autodetect=1"), std::wstring::npos);
}

TEST_F(RealWindowsTest, AccessKeysTypingAndEnterBringTheValuesIntoTheEncoder)
{
    const sceReturnCode result = Configure([](const Opened& dialog) {
        Type({'M'}, VK_MENU);
        dialog.AwaitFocus(Timeout);
        Type({'1', 'A', '2', 'Z', '3', VK_SPACE, VK_OEM_MINUS, VK_BACK});
        dialog.AwaitText(Timeout, L"12");
        Type({'A'}, VK_MENU);
        dialog.AwaitFocus(AutoDetect);
        Type({VK_HOME});
        dialog.AwaitText(AutoDetect, L"Disabled");
        Type({'S'}, VK_MENU);
        dialog.AwaitFocus(Baudrate);
        Type({VK_DOWN, VK_DOWN});
        dialog.AwaitText(Baudrate, L"38400");
        Type({'P'}, VK_MENU);
        dialog.AwaitFocus(Protocol);
        Type({'B'});
        dialog.AwaitText(Protocol, L"Binary");
        Type({'C'}, VK_MENU);
        dialog.AwaitFocus(Device);
        Type({'L', 'P', 'T', '1'});
        dialog.AwaitText(Device, L"lpt1");
        Type({VK_RETURN});
    });
    EXPECT_EQ(result, sceSuccess);
    EXPECT_EQ(encoder.Parameters(), L"Encoding capabilities=Mifare Classic, Mifare Ultralight\r\n"
                                    L"Device=lpt1\r\nAutodetect=0\r\nBaud rate=38400\r\nTimeout=12");
    EXPECT_EQ(frmConfigure::OfThread().Protocol, 1);
}

TEST_F(RealWindowsTest, BaudRateAndProtocolComeAliveInTheirColours)
{
    constexpr int menu = COLOR_MENU;
    const COLORREF before = GetSysColor(menu);
    constexpr COLORREF pink = RGB(0xFF, 0x80, 0xC0);
    SetSysColors(1, &menu, &pink);
    Configure([](const Opened& dialog) {
        const auto awaitState = [&](bool enabled, COLORREF colour) {
            for (int position = Baudrate - 1; position <= Protocol; ++position) {
                Await("the state of a control", [&] { return dialog.IsEnabled(position) == enabled; });
            }
            for (const int position : {Baudrate, Protocol}) {
                const HDC context = GetDC(dialog.Child(position));
                RECT field{};
                GetClientRect(dialog.Child(position), &field);
                Await("a colour",
                      [&] { return GetPixel(context, field.right / 2, field.bottom / 2) == colour; });
                ReleaseDC(dialog.Child(position), context);
            }
        };
        awaitState(false, pink);
        Type({'A'}, VK_MENU);
        Type({VK_HOME});
        awaitState(true, GetSysColor(COLOR_WINDOW));
        Type({VK_END});
        awaitState(false, pink);
        Type({VK_ESCAPE});
    });
    SetSysColors(1, &menu, &before);
}

TEST_F(RealWindowsTest, CloseBoxIsNotCancel)
{
    frmConfigure::OfThread().OKPressed = true;
    EXPECT_EQ(Configure([](const Opened&) { Type({VK_F4}, VK_MENU); }), sceSuccess);
    EXPECT_EQ(
        Configure([](const Opened& dialog) { PostMessageW(dialog.Window, WM_SYSCOMMAND, SC_CLOSE, 0); }),
        sceSuccess);
    EXPECT_EQ(Configure([](const Opened&) { Type({VK_ESCAPE}); }), sceCanceled);
}

TEST_F(RealWindowsTest, TestRunsToItsBannerOnTopAndLeadsBack)
{
    duringCall = [](ReaderFunction) {
        PostMessageW(FindWindowW(nullptr, English.TestCaption), WM_CLOSE, 0, 0);
    };
    Configure([](const Opened& dialog) {
        const Opened test = RunTest(); // the close box was tried at each of its calls
        EXPECT_FALSE(IsWindowEnabled(dialog.Window));
        const auto end = test.Text(Log).size();
        const auto selection = SendMessageW(test.Child(Log), EM_GETSEL, 0, 0);
        EXPECT_EQ(static_cast<size_t>(LOWORD(selection)), end);
        EXPECT_EQ(static_cast<size_t>(HIWORD(selection)), end);
        // Escape does nothing and Enter closes, from the log as well, which a click gives the focus.
        SendMessageW(test.Window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(test.Child(Log)), TRUE);
        test.AwaitFocus(Log);
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
    Configure([](const Opened&) { Type({'T'}, VK_MENU); });
    EXPECT_EQ(last, ReaderFunction::CloseComm);
    MSG quit{};
    ASSERT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(quit.wParam, 7U);
}

/// How a text comes out on a control, "&" taken for what it is.
SIZE Extent(HWND control, const std::wstring& text)
{
    const HDC context = GetDC(control);
    SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    wchar_t face[LF_FACESIZE] = L"";
    GetTextFaceW(context, LF_FACESIZE, face);
    EXPECT_STREQ(face, L"Tahoma");
    RECT area{};
    DrawTextW(context, text.c_str(), -1, &area, DT_CALCRECT | DT_SINGLELINE);
    ReleaseDC(control, context);
    return {area.right, area.bottom};
}

void ExpectTextFits(HWND control, const std::wstring& text, int border)
{
    const SIZE extent = Extent(control, text);
    RECT area{};
    GetClientRect(control, &area);
    EXPECT_LE(extent.cx + border, area.right) << testing::PrintToString(text);
    EXPECT_LE(extent.cy, area.bottom) << testing::PrintToString(text);
}

TEST_F(RealWindowsTest, EveryTextIsTahomaAndFitsItsControl)
{
    for (const Language& in : {English, French}) {
        const auto act = [&](const Opened& dialog) {
            for (int position = 0; position <= Cancel; ++position) {
                const HWND control = dialog.Child(position);
                ExpectTextFits(control, dialog.Text(position), /*border=*/0);
                const int arrow = GetSystemMetrics(SM_CXVSCROLL) + 8;
                const auto lines = SendMessageW(control, CB_GETCOUNT, 0, 0);
                for (WPARAM line = 0; std::cmp_less(line, lines); ++line) {
                    wchar_t text[100] = L"";
                    SendMessageW(control, CB_GETLBTEXT, line, reinterpret_cast<LPARAM>(text));
                    ExpectTextFits(control, text, arrow);
                }
            }
            const Opened test = RunTest(in);
            ExpectTextFits(test.Child(TestOK), test.Text(TestOK), /*border=*/0);
            Extent(test.Child(Log), L"");
            constexpr int linesOfTheTest = 13; // more if one were broken
            EXPECT_EQ(SendMessageW(test.Child(Log), EM_GETLINECOUNT, 0, 0), linesOfTheTest);
            Type({VK_RETURN});
            Await("the first dialog to come back", [&] { return dialog.HasFocus(); });
            Type({VK_ESCAPE});
        };
        EXPECT_EQ(Configure(act, in), sceCanceled);
    }
}

TEST_F(RealWindowsTest, AccessKeysOfBothLanguagesLeadToTheirFields)
{
    encoder.Parameters(L"Autodetect=0");
    for (const Language& in : {English, French}) {
        const auto act = [&](const Opened& dialog) {
            for (int field = 4; field >= 0; --field) {
                Type({in.AccessKeys[field]}, VK_MENU);
                dialog.AwaitFocus(Device + 2 * field);
            }
            Type({VK_ESCAPE});
        };
        EXPECT_EQ(Configure(act, in), sceCanceled);
    }
}

TEST_F(RealWindowsTest, FormWithNothingEnabledIsModalCentredAndClosed)
{
    const HWND host = CreateWindowExW(0, L"STATIC", L"Host", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                                      nullptr, nullptr, nullptr);
    Form form({.Width = 3000, .Height = 1500, .FontPoints = 9});
    form.Caption = L"Form";
    form.Add({"cmdOff", ControlKind::Button, {0, 0, 1500, 420}}).Enable(false);
    While([&] { EXPECT_TRUE(form.ShowModal()); },
          [&] {
              const Opened shown(L"Form");
              EXPECT_FALSE(IsWindowEnabled(host));
              EXPECT_FALSE(
                  IsWindowVisible(GetWindow(shown.Window, GW_OWNER))); // keeps it out of the task bar
              EXPECT_EQ(GetWindowLongW(shown.Window, GWL_STYLE) &
                            (WS_MINIMIZEBOX | WS_MAXIMIZEBOX | WS_THICKFRAME),
                        0);
              RECT client{};
              GetClientRect(shown.Window, &client);
              EXPECT_EQ(client.right, 2 * client.bottom);
              RECT window{};
              RECT screen{};
              GetWindowRect(shown.Window, &window);
              SystemParametersInfoW(SPI_GETWORKAREA, 0, &screen, 0);
              EXPECT_NEAR(window.left + window.right, screen.right, 1);
              EXPECT_NEAR(window.top + window.bottom, screen.bottom, 1);
              Type({VK_F4}, VK_MENU);
          });
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
    inner.Add({"txtKeys", ControlKind::TextField, {0, 0, 1500, 420}}).AcceptsTyped = [](wchar_t) -> bool {
        throw std::runtime_error("typed");
    };
    While([&] { EXPECT_THROW(outer.ShowModal(), std::runtime_error); },
          [] {
              const Opened first(L"Outer");
              Type({VK_RETURN});
              const Opened second(L"Inner");
              Type({'X'});
          });
    EXPECT_FALSE(inner.IsOpen());
    EXPECT_FALSE(outer.IsOpen());
    EXPECT_EQ(FindWindowW(nullptr, L"Outer"), nullptr);
}

} // namespace
} // namespace acg
