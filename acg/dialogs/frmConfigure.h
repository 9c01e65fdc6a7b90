// The configuration dialog.
#pragma once

#include "acg/dialogs/frmTest.h"
#include "acg/forms/Forms.h"
#include "acg/reader/ReaderDLL.h"

namespace acg
{

/// Lets a user edit the communication settings, and try them in the test dialog without storing them.
class frmConfigure : public DialogSettings
{
public:
    /// The one of this thread. It outlives its window: what nobody writes on the way in, Protocol and
    /// OKPressed, keeps its value from the last dialog.
    [[nodiscard]] static frmConfigure& OfThread();

    bool OKPressed = false;

    [[nodiscard]] bool IsOpen() const { return m_screen != nullptr; }
    /// Shows the dialog, which isn't open, without an owner, and returns when it has been closed, or at once
    /// if it can't be shown.
    void Show(const ReaderDLL& reader);

private:
    struct Screen;

    void Form_Load();
    void TakeSettings(DialogSettings& settings) const;
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
