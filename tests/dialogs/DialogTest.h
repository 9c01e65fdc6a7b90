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

    static std::wstring TextOf(Form& form, const char* control) { return Named(form, control).Text(); }
};

} // namespace acg
