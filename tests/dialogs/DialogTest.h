// What the tests of the dialogs have in common: an encoder on a scripted reader, and somebody who plays.
#pragma once

#include "dialogs/frmConfigure.h"
#include "dialogs/frmTest.h"
#include "platform/HeadlessPlayer.h"
#include "tests/ScriptedReader.h"

namespace acg
{

class DialogTest : public EncoderTest
{
protected:
    void SetUp() override
    {
        // Both objects outlive a test as they outlive a dialog.
        frmConfigure::OfThread() = {};
        frmTest::OfThread() = {};
    }
    void TearDown() override { HeadlessPlayer() = nullptr; }

    using Player = std::function<void(Form&)>;

    /// Shows the configuration dialog to a player, and the test dialog to another.
    sceReturnCode Configure(
        const Player& play, const Player& playTest = [](Form&) {}, const std::wstring& language = L"english")
    {
        int forms = 0;
        HeadlessPlayer() = [&](Form& form) { (forms++ == 0 ? play : playTest)(form); };
        return encoder.Configure(language);
    }

    static void Press(Form& form, const char* button) { form.Named(button).Press(); }
    static std::wstring TextOf(Form& form, const char* control) { return form.Named(control).Text(); }
};

} // namespace acg
