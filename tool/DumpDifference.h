// Where two dumps of a card differ, or a dump and a card.
#pragma once

#include "tool/DumpFile.h"
#include "tool/Output.h"

#include <cstdint>

namespace acg::tool
{

/// Shows how two blocks that aren't equal differ, the first one by lines that begin with "<", the second one
/// by ">"; in the JSON object as an element of "blocks". The keys of a trailer aren't shown.
void ShowDifference(int32_t number, const DumpedBlock& one, const DumpedBlock& other, Output& out);

} // namespace acg::tool
