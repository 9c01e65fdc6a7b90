// The access bits of a sector as its trailer stores them.
#pragma once

#include <array>
#include <cstdint>

namespace acg
{

/// Bytes 6, 7 and 8 of a trailer: the access triple (C1, C2, C3) of each of the four slots, stored twice.
/// They are drawn in acg/cards/AccessBits.h. The conditions of the interface are something else: the level of
/// slot 3.
using ConditionBytes = std::array<uint8_t, 3>;

} // namespace acg
