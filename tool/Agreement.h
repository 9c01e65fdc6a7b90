// The question that a command asks before it writes what can't be undone.
#pragma once

#include "tool/Output.h"

#include <string>

namespace acg::tool
{

/// Standard input is a terminal, and --json isn't given.
[[nodiscard]] bool IsSomebodyToAsk(const Output& out);

/// Throws UsageError if nobody can be asked. look: the option that only looks.
void RequireSomebodyToAsk(const Output& out, const std::string& look = "--dry-run");

/// Asks on the terminal, once more after any other answer. Returns which of the answers it is: its first
/// letter; the last one if the input ends. Throws Interruption after Ctrl-C.
[[nodiscard]] char Ask(const std::string& question, const std::string& answers);

/// Asks on the terminal whether that is to be written. Throws Interruption after Ctrl-C.
[[nodiscard]] bool IsAgreedTo(const std::string& what = "this");

} // namespace acg::tool
