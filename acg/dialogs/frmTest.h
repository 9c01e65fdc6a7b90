// The test dialog.
#pragma once

#include "acg/dialogs/Texts.h"
#include "acg/forms/Forms.h"
#include "acg/reader/ReaderDLL.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace acg
{

/// What both dialogs are given before they are shown.
struct DialogSettings {
    std::wstring Language;
    std::wstring Device;
    uint8_t AutoDetect = 0; ///< 0 disabled, 1 normal, 2 fast; the position in its list
    int32_t BaudRate = 0;
    uint8_t Protocol = 0; ///< 0 ASCII, 1 binary; the position in its list. For the test alone
    int32_t Timeout = 0;  ///< milliseconds
};

/// Tries settings on the reader: opens a link of its own, looks for readers, opens the first, reads its
/// identity, closes both, and writes each step as a line in a log on the screen.
///
/// The test runs once for each opening, a second after it. It goes straight to the reader library: no Encoder
/// takes part, no command is sent, and no card is needed. While it runs the window can't be closed.
class frmTest : public DialogSettings
{
public:
    /// The one of this thread. It outlives its window, and its fields keep their values.
    [[nodiscard]] static frmTest& OfThread();

    /// Shows the dialog, on top of its owner if it has one, and returns when it has been closed, or at once
    /// if it can't be shown. One dialog at a time.
    void Show(const ReaderDLL& reader, const Form* owner = nullptr);

private:
    struct Screen;
    class Run;

    void Form_Load();
    void cmdOK_Click();
    void LogLine(std::wstring_view text);
    void Log(const Translated& text, std::initializer_list<std::wstring_view> values = {});
    void tmrTest_Timer();

    [[nodiscard]] std::wstring ModeText() const;
    [[nodiscard]] const wchar_t* ProtocolName(uint8_t number) const;
    Failure RunTest(Run& run);

    bool m_french = false;
    Screen* m_screen = nullptr; ///< while the dialog is open
};

} // namespace acg
