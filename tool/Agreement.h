// The question that a command asks before it writes what can't be undone.
#pragma once

#include "tool/Output.h"

namespace acg::tool
{

/// Throws UsageError if nobody can be asked: with --json, or if standard input isn't a terminal.
void RequireSomebodyToAsk(const Output& out);

/// Asks on the terminal. Throws Interruption after Ctrl-C.
[[nodiscard]] bool IsAgreedTo();

} // namespace acg::tool
