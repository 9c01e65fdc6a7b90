// The access bits of a sector as its trailer stores them.
#pragma once

#include <array>
#include <cstdint>

namespace acg
{

/// Bytes 6, 7 and 8 of a trailer. Their bits are drawn in acg/cards/AccessBits.h.
using ConditionBytes = std::array<uint8_t, 3>;

} // namespace acg
