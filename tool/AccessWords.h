// A sector's access in words.
#pragma once

#include "tool/Card.h"
#include "tool/Output.h"
#include "tool/SectorAccess.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace acg::tool
{

/// None for a sector as such, whose data blocks are counted from 0.
using SectorNumber = std::optional<int32_t>;

/// "nobody", "key A", "key B" or "key A or key B".
[[nodiscard]] const char* NameOf(KeySet holders);

/// What the card grants. The manufacturer's block can't be written, whatever the access bits say.
[[nodiscard]] SectorRights RightsIn(const ConditionBytes& bytes, SectorNumber sector);

/// What a level lets one key do, in words: of a data block's level, or of the trailer's. The index is that
/// key's part of the level, 0 to 3.
using KeyWords = std::array<std::string_view, 4>;
inline constexpr KeyWords BlockWords = {"-", "r", "w", "rw"};
inline constexpr KeyWords TrailerWords = {"-", "keys", "bits", "keys+bits"};

/// A slot's part of the rights as --levels takes it, with what key A and key B may: "r/rw", of the trailer
/// "-/keys+bits". Rights to increment and decrement aren't part of it.
[[nodiscard]] std::string LevelWords(const SectorRights& rights, unsigned slot);
/// All four, joined by commas.
[[nodiscard]] std::string LevelWords(const SectorRights& rights);

/// As --levels and --keys take it, and what is granted: "13,13,13,12 with both keys:
/// r/rw,r/rw,r/rw,-/keys+bits", 57 characters at most.
[[nodiscard]] std::string FormatLevels(const ConditionBytes& bytes);

/// A sector's access as "trailer", "preview" and "protect" show it.
struct AccessReport {
    SectorNumber Sector; ///< none for "preview"
    ConditionBytes Bytes;
    std::optional<uint8_t> UserByte;
    std::vector<std::string> Deviations;
};

/// Two lines: "title: access bits FF0780, byte 9 is 105" and the levels. UserByte isn't none.
[[nodiscard]] std::string AccessHead(const std::string& title, const AccessReport& access);
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
