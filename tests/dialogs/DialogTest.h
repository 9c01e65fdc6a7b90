// What the tests of the dialogs have in common: an encoder on a scripted reader, and somebody who plays.
#pragma once

#include "dialogs/frmConfigure.h"
#include "dialogs/frmTest.h"
#include "platform/HeadlessPlayer.h"
#include "tests/ScriptedReader.h"

#include <map>
#include <utility>

namespace acg
{

class DialogTest : public EncoderTest
{
protected:
    DialogTest()
    {
        // Both objects outlive a test as they outlive a dialog.
        frmConfigure& configure = frmConfigure::OfThread();
        configure.Protocol = 0;
        configure.OKPressed = false;
        frmTest& test = frmTest::OfThread();
        std::tie(test.AutoDetect, test.BaudRate, test.Protocol, test.Timeout) = std::tuple(0, 0, 0, 0);
    }
    ~DialogTest() override { HeadlessPlayer() = nullptr; }

    using Player = std::function<void(Form&)>;

    /// Shows the configuration dialog to a player, and the test dialog to another.
    sceReturnCode Configure(const Player& play, const Player& playTest = {},
                            std::wstring_view language = L"english")
    {
        int forms = 0;
        HeadlessPlayer() = [&](Form& form) { (forms++ == 0 ? play : playTest)(form); };
        return encoder.Configure(std::wstring(language));
    }

    static void Press(Form& form, const char* button) { form.Named(button).Press(); }
    static std::wstring TextOf(Form& form, const char* control) { return form.Named(control).Text(); }
};

} // namespace acg
