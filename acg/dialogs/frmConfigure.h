// The configuration dialog.
#pragma once

#include "acg/forms/Forms.h"
#include "acg/reader/ReaderDLL.h"

#include <cstdint>
#include <string>

namespace acg
{

/// Lets a user edit the communication settings, and try them in the test dialog without storing them.
class frmConfigure
{
public:
    /// The one of this thread. It outlives its window: what nobody writes on the way in, Protocol and
    /// OKPressed, keeps its value from the last dialog.
    [[nodiscard]] static frmConfigure& OfThread();

    std::wstring Language;
    std::wstring Device;
    uint8_t AutoDetect = 0; ///< 0 disabled, 1 normal, 2 fast; the position in its list
    int32_t BaudRate = 0;
    uint8_t Protocol = 0; ///< 0 ASCII, 1 binary; the position in its list. For the test alone
    int32_t Timeout = 0;  ///< milliseconds
    bool OKPressed = false;

    /// One dialog at a time: another can't be shown on top of it.
    [[nodiscard]] bool IsOpen() const { return m_screen != nullptr; }
    /// Shows the dialog without an owner, and returns when it has been closed, or at once if it can't be
    /// shown.
    void Show(const ReaderDLL& reader);

private:
    struct Screen;

    void Form_Load();
    void cboAutoDetect_Change();
    void cboAutoDetect_Click();
    [[nodiscard]] static bool txtTimeout_KeyPress(wchar_t character) noexcept;
    void cmdDefault_Click();
    void cmdTest_Click();
    void cmdCancel_Click();
    void cmdOK_Click();

    Screen* m_screen = nullptr; ///< while the dialog is open
};

} // namespace acg
