// A sector's trailer as it is read, and the access that the command line asks for.
#pragma once

#include "tool/Card.h"
#include "tool/CommandLine.h"
#include "tool/SectorAccess.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace acg::tool
{

/// What "preview" and "protect" take.
struct LevelOptions {
    std::string Levels;    ///< --levels
    std::string KeysToUse; ///< --keys
};

void TakesSector(CommandOptions& command, std::string& sector);
/// aboutKeys: the help of --keys.
void TakesLevels(CommandOptions& command, LevelOptions& levels, const char* aboutKeys,
                 Need keysNeeded = Need::Optional);

/// Throws UsageError for a sector that no card has.
[[nodiscard]] int32_t ParseSector(std::string_view text);

/// Throws UsageError unless it is four levels, 0 to 15, joined by commas.
[[nodiscard]] std::array<int32_t, SectorSlots> ParseLevels(std::string_view text);

/// Throws UsageError for another key mode than 1 and 2.
[[nodiscard]] uint8_t ParseKeysToUse(std::string_view text);

/// Sets IsValueBlock for each; throws UsageError unless the text is numbers from 0 to 2, joined by commas.
void ParseValueBlocks(std::string_view text, SectorLevels& levels);

/// The access bits; throws UsageError for levels that can't be stored.
[[nodiscard]] ConditionBytes EncodeOrRefuse(const SectorLevels& levels);

/// Throws OtherFailure if the reply isn't a whole block, or the access bits contradict themselves.
[[nodiscard]] Trailer ReadTrailer(Encoder& encoder, int32_t sector, const LoginKey& key);

} // namespace acg::tool
