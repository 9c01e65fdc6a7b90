#include "tool/SectorTrailer.h"

#include "acg/cards/BlockAddress.h"
#include "acg/platform/HexText.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

int32_t ParseSector(std::string_view text)
{
    return ParseNumber(text, 0, LastSector, "SECTOR is a number from 0 to 39, on a 1K card to 15");
}

SectorLevels ParseLevels(const LevelOptions& options)
{
    constexpr std::string_view Problem = "--levels is four levels from 0 to 15, as in 13,13,13,12";
    const std::vector<std::string_view> parts = Split(options.Levels, ',');
    if (parts.size() != SectorSlots) {
        throw UsageError{std::string(Problem)};
    }
    SectorLevels levels{.KeysToUse = KeysAsOnCard};
    std::ranges::transform(parts, levels.Levels.begin(), [&](std::string_view part) {
        return ParseNumber(part, 0, HighestLevel, Problem);
    });
    if (!options.ValueBlocks.empty()) {
        for (const std::string_view part : Split(options.ValueBlocks, ',')) {
            const int32_t slot = ParseNumber(part, 0, DataSlots - 1, "--value is one or more of 0, 1 and 2");
            levels.IsValueBlock[static_cast<size_t>(slot)] = true;
        }
    }
    if (!options.KeysToUse.empty()) {
        levels.KeysToUse = static_cast<uint8_t>(
            ParseNumber(options.KeysToUse, KeyAAlone, BothKeys, "--keys is 1, key A alone, or 2, both keys"));
    }
    return levels;
}

ConditionBytes EncodeOrRefuse(const SectorLevels& levels)
{
    if (const std::optional<ConditionBytes> bytes = Encode(levels)) {
        return *bytes;
    }
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (!BlockTriple(levels.Levels[slot], levels.KeysToUse, /*isValueBlock=*/false)) {
            throw UsageError{
                Format("level %d can't be stored for a data block with both keys: the card can't let key A "
                       "do what key B may not",
                       levels.Levels[slot])};
        }
    }
    throw UsageError{
        Format("level %d can't be stored for the trailer with both keys, only 0, 4, 8 and 12: if key B is "
               "a key, the card doesn't let key A write the trailer",
               levels.Levels[TrailerSlot])};
}

namespace
{

Trailer Checked(const Block& block, int32_t sector)
{
    Trailer trailer(block);
    if (!InvertedCopiesAgree(trailer.Conditions)) {
        throw OtherFailure{
            Format("the access bits that were read of sector %d, %s, contradict their inverted "
                   "copies: don't write this sector",
                   sector, ToHex(trailer.Conditions).c_str())};
    }
    return trailer;
}

} // namespace

Trailer ReadTrailer(CardSession& card, int32_t sector, const LoginKey& key)
{
    return Checked(card.ReadBlock(TrailerBlock(sector), key), sector);
}

Trailer TrailerIn(const Dump& card, int32_t sector)
{
    constexpr uint16_t Needed = AccessBytes | BitsOf(UserByteAt, 1);
    const DumpedBlock& block = BlockIn(card, TrailerBlock(sector));
    if ((block.Known & Needed) != Needed) {
        throw OtherFailure{Format("the dump doesn't have the access bits of sector %d", sector)};
    }
    return Checked(block.Bytes, sector);
}

void AddSectorArgument(CommandOptions& command, std::string& sector)
{
    command.Argument("SECTOR", sector, "The sector, 0 to 15, on a 4K card to 39");
}

void AddLevelOptions(CommandOptions& command, LevelOptions& levels, const char* aboutKeys, Need keysNeeded,
                     const char* aboutValue)
{
    command.Option("--levels", "L0,L1,L2,LT", levels.Levels,
                   "The levels of the three data blocks and of the trailer, as in 13,13,13,12",
                   Need::Required);
    command.Option("--keys", "1|2", levels.KeysToUse, aboutKeys, keysNeeded);
    command.Option("--value", "0,1,2", levels.ValueBlocks, aboutValue);
}

} // namespace acg::tool
