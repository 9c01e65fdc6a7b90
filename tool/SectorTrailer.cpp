#include "tool/SectorTrailer.h"

#include "acg/cards/BlockAddress.h"
#include "acg/platform/HexText.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

int32_t ParseLevel(std::string_view text, unsigned slot, const std::string& what)
{
    const bool isTrailer = slot == TrailerSlot;
    const KeyWords& words = isTrailer ? TrailerWords : BlockWords;
    const size_t slash = text.find('/');
    const auto* const keyA = std::ranges::find(words, text.substr(0, slash));
    const auto* const keyB = std::ranges::find(words, text.substr(std::min(slash, text.size() - 1) + 1));
    if (slash != std::string_view::npos && keyA != words.end() && keyB != words.end()) {
        return static_cast<int32_t>((keyA - words.begin()) + (keyB - words.begin()) * std::ssize(words));
    }
    return ParseNumber(
        text, 0, HighestLevel,
        Format("%s: \"%s\" isn't a level of %s: 0 to 15, or %s, as in %s", what.c_str(),
               std::string(text).c_str(), isTrailer ? "the trailer" : "a data block",
               isTrailer ? "-, keys, bits or keys+bits, for key A/key B" : "-, r, w or rw, for key A/key B",
               isTrailer ? "-/keys+bits" : "r/rw"));
}

} // namespace

int32_t ParseSector(std::string_view text)
{
    return ParseNumber(text, 0, LastSector,
                       "a sector is a number from 0 to 39, on a 1K card to 15; several are given as in 1-15");
}

std::array<int32_t, SectorSlots> ParseLevelList(std::string_view text, const std::string& what)
{
    const std::vector<std::string_view> parts = Split(text, ',');
    if (parts.size() != SectorSlots) {
        throw UsageError{what + " is four levels, of the three data blocks and of the trailer, as in "
                                "13,13,13,12 or r/rw,r/rw,r/rw,-/keys+bits"};
    }
    std::array<int32_t, SectorSlots> levels{};
    for (unsigned slot = 0; slot < SectorSlots; ++slot) {
        levels[slot] = ParseLevel(parts[slot], slot, what);
    }
    return levels;
}

SectorLevels ParseLevels(const LevelOptions& options)
{
    if (options.Levels.empty()) {
        throw UsageError{"--levels is required, as in --levels 13,13,13,12"};
    }
    SectorLevels levels{.Levels = ParseLevelList(options.Levels, "--levels"), .KeysToUse = KeysAsOnCard};
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
    const SectorLevels nearest = NearestStorable(levels);
    const auto& [first, second, third, trailer] = nearest.Levels;
    std::string advice = Format("; the nearest that can be stored: %d,%d,%d,%d, in words %s", first, second,
                                third, trailer, LevelWords(RightsOfLevels(nearest)).c_str());
    constexpr int32_t WriteConditions = scss_A_WriteConditions + scss_B_WriteConditions;
    if ((levels.Levels[TrailerSlot] & WriteConditions) != 0 && (trailer & WriteConditions) == 0) {
        advice += ", which freezes the sector for good; with --keys 1, key A may write the trailer";
    }
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (nearest.Levels[slot] != levels.Levels[slot]) {
            throw UsageError{
                Format("level %d can't be stored for a data block with both keys: the card can't let key A "
                       "do what key B may not",
                       levels.Levels[slot]) +
                advice};
        }
    }
    throw UsageError{
        Format("level %d can't be stored for the trailer with both keys, only 0, 4, 8 and 12: if key B is "
               "a key, the card doesn't let key A write the trailer",
               levels.Levels[TrailerSlot]) +
        advice};
}

Trailer JudgeTrailer(const Block& block, int32_t sector)
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

Trailer ReadTrailer(CardSession& card, int32_t sector, const LoginKey& key)
{
    return JudgeTrailer(card.ReadBlock(TrailerBlock(sector), key), sector);
}

Trailer TrailerIn(const Dump& card, int32_t sector)
{
    constexpr uint16_t Needed = AccessBytes | BitsOf(UserByteAt, 1);
    const DumpedBlock& block = BlockIn(card, TrailerBlock(sector));
    if ((block.Known & Needed) != Needed) {
        throw OtherFailure{Format("the dump doesn't have the access bits of sector %d", sector)};
    }
    return JudgeTrailer(block.Bytes, sector);
}

void AddSectorArgument(CommandOptions& command, std::string& sector)
{
    command.Argument("SECTOR", sector,
                     "A sector, 0 to 15, on a 4K card to 39, or the first and the last one: SECTOR-SECTOR");
}

void AddLevelOptions(CommandOptions& command, LevelOptions& levels, const char* aboutKeys,
                     const char* aboutValue)
{
    command.Option(
        "--levels", "L0,L1,L2,LT", levels.Levels,
        "The levels of the three data blocks and of the trailer, 0 to 15, as in 13,13,13,12; or what "
        "key A/key B may, as in r/rw,r/rw,r/rw,-/keys+bits: of a data block -, r, w or rw, of the "
        "trailer -, keys, bits or keys+bits");
    command.Option("--keys", "1|2", levels.KeysToUse, aboutKeys);
    command.Option("--value", "0,1,2", levels.ValueBlocks, aboutValue);
}

} // namespace acg::tool
