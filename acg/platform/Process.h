// What the process has of the system: its environment.
#pragma once

#include "acg/platform/SystemPath.h"

namespace acg
{

/// The value of an environment variable, as the system spells it; empty if it isn't set. name: ASCII.
[[nodiscard]] SystemPath EnvironmentVariable(const char* name);

} // namespace acg
