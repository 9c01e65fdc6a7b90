// What a person does in a dialog that is played without a window.
#pragma once

#include "acg/dialogs/frmConfigure.h"
#include "acg/dialogs/frmTest.h"
#include "acg/forms/HeadlessPlayer.h"
#include "tests/ScriptedReader.h"

#include <algorithm>

namespace acg
{

/// The control with that name. There must be one.
inline Control& Named(Form& form, std::string_view name)
{
    return *std::ranges::find(form.Controls(), name,
                              [](const Control& control) { return control.Look.Name; });
}
inline void Press(Form& form, const char* button)
{
    Named(form, button).Press();
}

} // namespace acg
