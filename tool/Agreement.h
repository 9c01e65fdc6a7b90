// The question that a command asks before it writes what can't be undone.
#pragma once

#include "tool/Output.h"

#include <string>

namespace acg::tool
{

/// Throws UsageError if nobody can be asked: with --json, or if standard input isn't a terminal.
void RequireSomebodyToAsk(const Output& out);

/// Asks on the terminal whether that is to be written. Throws Interruption after Ctrl-C.
[[nodiscard]] bool IsAgreedTo(const std::string& what = "this");

} // namespace acg::tool
