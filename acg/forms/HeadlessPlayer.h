// The stand-in for a person in a build whose forms are headless.
#pragma once

#include "acg/forms/Forms.h"

#include <functional>

namespace acg
{

/// Called with each form that is shown, on the thread that shows it. It picks, edits, presses and lets the
/// timer tick; a form that it leaves open is closed when the player returns. With no player no form can be
/// shown.
[[nodiscard]] std::function<void(Form&)>& HeadlessPlayer();

} // namespace acg
