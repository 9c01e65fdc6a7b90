// What the tests of the dialogs have in common: an encoder on a scripted reader, and somebody who plays.
#pragma once

#include "dialogs/frmConfigure.h"
#include "dialogs/frmTest.h"
#include "platform/HeadlessPlayer.h"
#include "tests/ScriptedReader.h"

#include <algorithm>

namespace acg
{

/// The control with that name. There must be one.
inline Control& Named(Form& form, std::string_view name)
{
    const auto isNamed = [name](const Control& control) { return control.Look.Name == name; };
    return *std::ranges::find_if(form.Controls(), isNamed);
}
inline void Press(Form& form, const char* button)
{
    Named(form, button).Press();
}

class DialogTest : public EncoderTest
{
protected:
    /// Both objects outlive a test as they outlive a dialog.
    DialogTest() { frmConfigure::OfThread() = {}, frmTest::OfThread() = {}; }
    ~DialogTest() override { HeadlessPlayer() = nullptr; }

    using Player = std::function<void(Form&)>;
    /// Shows the configuration dialog to a player, and the test dialog to another.
    sceReturnCode Configure(const Player& play, const Player& playTest, const std::wstring& language)
    {
        HeadlessPlayer() = [&](Form& form) { (form.OnTimer ? playTest : play)(form); };
        return encoder.Configure(language);
    }
};

} // namespace acg
