// A sector's trailer as it is read, and the access that the command line asks for.
#pragma once

#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/DumpFile.h"
#include "tool/SectorAccess.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace acg::tool
{

/// What "preview" and "protect" take.
struct LevelOptions {
    std::string Levels;      ///< --levels
    std::string KeysToUse;   ///< --keys
    std::string ValueBlocks; ///< --value
};

void AddSectorArgument(CommandOptions& command, std::string& sector);
/// aboutKeys, aboutValue: the help of --keys and of --value.
void AddLevelOptions(CommandOptions& command, LevelOptions& levels, const char* aboutKeys,
                     const char* aboutValue);

/// Throws UsageError for a sector that no card has.
[[nodiscard]] int32_t ParseSector(std::string_view text);

/// Four levels joined by commas, of the three data blocks and of the trailer: each a number from 0 to 15, or
/// what key A and key B may, as in "r/rw" and "-/keys+bits". Throws UsageError, whose text begins with
/// `what`, as in "--levels".
[[nodiscard]] std::array<int32_t, SectorSlots> ParseLevelList(std::string_view text, const std::string& what);

/// KeysToUse is KeysAsOnCard if --keys isn't given. Throws UsageError unless --levels is a list of levels,
/// --value, if given, numbers from 0 to 2 joined by commas, and --keys, if given, 1 or 2.
[[nodiscard]] SectorLevels ParseLevels(const LevelOptions& options);

/// The access bits; throws UsageError for levels that can't be stored.
[[nodiscard]] ConditionBytes EncodeOrRefuse(const SectorLevels& levels);

/// Throws OtherFailure if the access bits contradict themselves.
[[nodiscard]] Trailer JudgeTrailer(const Block& block, int32_t sector);

/// Throws OtherFailure if the reply isn't a whole block, or the access bits contradict themselves.
[[nodiscard]] Trailer ReadTrailer(CardSession& card, int32_t sector, const LoginKey& key);
/// The trailer in a dump. Throws OtherFailure as ReadTrailer does, and if its access bits aren't known.
[[nodiscard]] Trailer TrailerIn(const Dump& card, int32_t sector);

} // namespace acg::tool
