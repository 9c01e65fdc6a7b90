// The test dialog.
#pragma once

#include "platform/Forms.h"
#include "reader/ReaderDLL.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace acg
{

/// Tries settings on the reader: opens a link of its own, looks for readers, opens the first, reads its
/// identity, closes both, and writes each step as a line in a log on the screen.
///
/// The test runs once for each opening, a second after it. It goes straight to the reader library: no Encoder
/// takes part, no command is sent, and no card is needed. While it runs the window can't be closed.
class frmTest
{
public:
    /// The one of this thread. It outlives its window, and its fields keep their values.
    [[nodiscard]] static frmTest& OfThread();

    std::wstring Language;
    std::wstring Device;
    uint8_t AutoDetect = 0; ///< 0 disabled, 1 normal, 2 fast
    int32_t BaudRate = 0;
    uint8_t Protocol = 0; ///< 0 ASCII, 1 binary
    int32_t Timeout = 0;  ///< milliseconds

    /// Shows the dialog, on top of its owner if it has one, and returns when it has been closed, or at once
    /// where it can't be shown. One dialog at a time.
    void Show(const ReaderDLL& Reader, Form* Owner = nullptr);

private:
    struct Texts {
        std::wstring m_sStart;
        std::wstring m_sOpening;
        std::wstring m_sOpenFailed;
        std::wstring m_sNoAutodetect;
        std::wstring m_sNormalDetect;
        std::wstring m_sFastDetect;
        std::wstring m_sAscii;
        std::wstring m_sBinary;
        std::wstring m_sPortOpen;
        std::wstring m_sDetecting;
        std::wstring m_sNoEncoder;
        std::wstring m_sFound;
        std::wstring m_sOpeningEncoder;
        std::wstring m_sNoAccess;
        std::wstring m_sDeviceID;
        std::wstring m_sEncoderType;
        std::wstring m_sClosingEncoder;
        std::wstring m_sClosingPort;
        std::wstring m_sSuccess; ///< with a CR LF pair before and after, like the next one
        std::wstring m_sFailed;
        std::wstring m_sError;
    };
    struct Translation;
    static const Translation Translations[];
    struct Window;
    class Running;
    class Link;

    void Form_Load();
    void cmdOK_Click();
    void LogLine(std::wstring_view Text);
    void tmrTest_Timer();

    [[nodiscard]] std::wstring ModeText() const;
    [[nodiscard]] const std::wstring& ProtocolName(uint8_t Number) const;
    Failure RunTest(Link& Opened);
    Failure TestReader(Link& Opened);

    Texts m_texts;
    Window* m_window = nullptr; ///< while the dialog is open
};

} // namespace acg
