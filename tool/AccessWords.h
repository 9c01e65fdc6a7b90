// A sector's access in words.
#pragma once

#include "tool/Card.h"
#include "tool/Output.h"
#include "tool/SectorAccess.h"

#include <optional>
#include <string>
#include <vector>

namespace acg::tool
{

/// None for a sector as such, whose data blocks are counted from 0.
using SectorNumber = std::optional<int32_t>;

/// "nobody", "key A", "key B" or "key A or key B".
[[nodiscard]] const char* NameOf(KeySet holders);

/// What the card grants. The manufacturer's block can't be written, whatever the access bits say.
[[nodiscard]] SectorRights RightsIn(const ConditionBytes& bytes, SectorNumber sector);

/// What key A may do with a data block, and what key B may, as in "r/rw": "-", "r", "w" or "rw".
[[nodiscard]] std::string DataWords(const Rights& rights);
/// What each may write of the trailer, as in "-/keys+bits": "-", "keys", "bits" or "keys+bits".
[[nodiscard]] std::string TrailerWords(const SectorRights& rights);

/// As --levels and --keys take it: "13,13,13,12 with both keys".
[[nodiscard]] std::string FormatLevels(const ConditionBytes& bytes);

/// A sector's access as "trailer", "preview" and "protect" show it.
struct AccessReport {
    SectorNumber Sector; ///< none for "preview"
    ConditionBytes Bytes;
    std::optional<uint8_t> UserByte;
    std::vector<std::string> Deviations;
};

/// The table, and below it who can change what again, and the deviations. Each thing that can never be
/// changed again has a line that begins with "FOR GOOD".
[[nodiscard]] std::string AccessTable(const AccessReport& access);
[[nodiscard]] JsonObject ToJson(const AccessReport& access);

/// "block 4", "blocks 128-132", or "data block 0".
[[nodiscard]] std::string NameOfSlot(unsigned slot, SectorNumber sector);

/// What is granted beyond the levels, and what they ask for and isn't granted, a line each.
[[nodiscard]] std::vector<std::string> Deviations(const SectorLevels& levels, const ConditionBytes& bytes,
                                                  SectorNumber sector);

struct TrailerDifference {
    char Mark; ///< '<' for the first trailer, '>' for the second, ' ' for both
    std::string Text;
};

/// Where two trailers of a sector differ. No text holds a key.
[[nodiscard]] std::vector<TrailerDifference> TrailerDifferences(const Trailer& first, const Trailer& second,
                                                                int32_t sector);

} // namespace acg::tool
