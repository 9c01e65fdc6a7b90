// What isn't a result: it goes to standard error.
#pragma once

#include <string_view>

namespace acg::tool
{

/// Prints "acg: " and the text, which ends without a line's end, behind what standard output has so far.
void PrintProblem(std::string_view Text);

} // namespace acg::tool
