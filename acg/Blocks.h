// Blocks as a person gives and sees them.
#pragma once

#include "acg/Card.h"
#include "acg/Output.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace acg::tool
{

/// A block's bytes in two digits each, as hexdump shows them; those whose bit isn't set in Known, bit 0 for
/// byte 0, as "--".
[[nodiscard]] std::string Digits(const Block& Bytes, uint16_t Known, std::string_view Between);
[[nodiscard]] std::string Characters(const Block& Bytes, uint16_t Known);
/// One line, with the number and without its end.
[[nodiscard]] std::string HexDump(int32_t Number, const Block& Bytes, uint16_t Known);

inline constexpr uint16_t AllKnown = 0xFFFF;
inline constexpr uint16_t AllButKeys = 0x03C0; ///< of a sector trailer

[[nodiscard]] bool IsTrailer(int32_t Number);

/// Throws UsageError for a number that no card has.
[[nodiscard]] int32_t ParseBlockNumber(std::string_view Text);
/// The data block that a write is meant for; throws UsageError for a trailer and for block 0, too.
[[nodiscard]] int32_t ParseDataBlock(std::string_view Text);

/// Reads what was just written; a failure is said before it is thrown.
[[nodiscard]] Block ReadBack(Encoder& Opened, int32_t Number, const Key& With, Output& Out);

} // namespace acg::tool
