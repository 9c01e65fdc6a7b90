// A sector's access in words.
#pragma once

#include "tool/Card.h"
#include "tool/SectorAccess.h"

#include <optional>
#include <string>
#include <vector>

namespace acg::tool
{

/// What each key may do with a block, or with a part of the trailer.
struct AccessRow {
    std::string What;
    std::vector<std::string> KeyA; ///< "read", "write", ...
    std::vector<std::string> KeyB;
};

/// None for a sector as such, whose data blocks are counted from 0.
using SectorNumber = std::optional<int32_t>;

/// "nobody", "key A", "key B" or "key A or key B".
[[nodiscard]] const char* NameOf(KeySet holders);

[[nodiscard]] std::vector<AccessRow> AccessRows(const ConditionBytes& bytes, SectorNumber sector);

/// Bytes 6 to 8 of the trailer, as "FF0780".
[[nodiscard]] std::string AccessBitsText(const ConditionBytes& bytes);

/// As --levels and --keys take it: "13,13,13,12 with both keys".
[[nodiscard]] std::string FormatLevels(const ConditionBytes& bytes);

/// The table, and below it who can change what again. Each thing that can never be changed again has a line
/// that begins with "FOR GOOD".
[[nodiscard]] std::string AccessTable(const ConditionBytes& bytes, SectorNumber sector);

/// "block 4", "blocks 128-132", or "data block 0".
[[nodiscard]] std::string NameOfSlot(unsigned slot, SectorNumber sector);

/// What is granted beyond the levels, and what they ask for and isn't granted, a line each.
[[nodiscard]] std::vector<std::string> Deviations(const SectorLevels& levels, const ConditionBytes& bytes,
                                                  SectorNumber sector);

/// The level that can't be stored, and why.
[[nodiscard]] std::string RefusalInWords(const SectorLevels& levels);

struct TrailerDifference {
    char Mark; ///< '<' for the first trailer, '>' for the second, ' ' for both
    std::string Text;
};

/// Where two trailers of a sector differ. No text holds a key.
[[nodiscard]] std::vector<TrailerDifference> TrailerDifferences(const Trailer& first, const Trailer& second,
                                                                int32_t sector);

} // namespace acg::tool
