// What the process has of the system: its environment, and the processor's time.
#pragma once

#include "acg/platform/SystemPath.h"

#include <chrono>

namespace acg
{

/// The value of an environment variable, as the system spells it; empty if it isn't set. name: ASCII.
[[nodiscard]] SystemPath EnvironmentVariable(const char* name);

/// Leaves the processor to others for that time; returns at once for none.
void Wait(std::chrono::microseconds time);

} // namespace acg
