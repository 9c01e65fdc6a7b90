// A sector's access in words.
#pragma once

#include "acg/cards/SectorAccess.h"
#include "tool/Card.h"

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

/// Sector: none for a sector as such, whose data blocks are counted from 0.
using SectorNumber = std::optional<int32_t>;

/// "nobody", "key A", "key B" or "key A or key B".
[[nodiscard]] const char* NameOf(Keys Holders);

[[nodiscard]] std::vector<AccessRow> AccessRows(const ConditionBytes& Bytes, SectorNumber Sector);

/// Bytes 6 to 8 of the trailer, as "FF0780".
[[nodiscard]] std::string AccessBitsText(const ConditionBytes& Bytes);

/// As --levels and --keys take it: "13,13,13,12 with both keys".
[[nodiscard]] std::string LevelsInWords(const ConditionBytes& Bytes);

/// The table, and below it who can change what again. Each thing that can never be changed again has a line
/// that begins with "FOR GOOD".
[[nodiscard]] std::string AccessTable(const ConditionBytes& Bytes, SectorNumber Sector);

/// "block 4", "blocks 128-132", or "data block 0".
[[nodiscard]] std::string NameOfSlot(unsigned Slot, SectorNumber Sector);

/// What is granted beyond the levels, and what they ask for and isn't granted, a line each.
[[nodiscard]] std::vector<std::string> Deviations(const SectorLevels& Asked, const ConditionBytes& Bytes,
                                                  SectorNumber Sector);

/// The level that can't be stored, and why.
[[nodiscard]] std::string RefusalInWords(const SectorLevels& Asked);

[[nodiscard]] ConditionBytes ConditionBytesOf(const Block& Trailer);
[[nodiscard]] uint8_t UserByteOf(const Block& Trailer);
[[nodiscard]] std::wstring KeyBOf(const Block& Trailer);

struct TrailerDifference {
    char Mark; ///< '<' for the first trailer, '>' for the second, ' ' for both
    std::string Text;
};

/// Where two trailers of a sector differ. No text holds a key.
[[nodiscard]] std::vector<TrailerDifference> TrailerDifferences(const Block& First, const Block& Second,
                                                                int32_t Sector);

} // namespace acg::tool
