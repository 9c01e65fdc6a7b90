#include "tool/SectorTrailer.h"

#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

std::vector<std::string_view> Parts(std::string_view text)
{
    std::vector<std::string_view> parts;
    for (size_t at = 0; at <= text.size();) {
        const size_t comma = std::min(text.find(',', at), text.size());
        parts.push_back(text.substr(at, comma - at));
        at = comma + 1;
    }
    return parts;
}

} // namespace

void ParseValueBlocks(std::string_view text, SectorLevels& levels)
{
    for (const std::string_view part : Parts(text)) {
        const int32_t block = ParseNumber(part, 0, DataSlots - 1, "--value is one or more of 0, 1 and 2");
        levels.IsValueBlock[static_cast<size_t>(block)] = true;
    }
}

int32_t ParseSector(std::string_view text)
{
    return ParseNumber(text, 0, LastSector, "SECTOR is a number from 0 to 39, on a 1K card to 15");
}

std::array<int32_t, SectorSlots> ParseLevels(std::string_view text)
{
    constexpr std::string_view problem = "--levels is four levels from 0 to 15, as in 13,13,13,12";
    const std::vector<std::string_view> parts = Parts(text);
    if (parts.size() != SectorSlots) {
        throw UsageError{std::string(problem)};
    }
    std::array<int32_t, SectorSlots> levels{};
    std::ranges::transform(parts, levels.begin(), [&](std::string_view part) {
        return ParseNumber(part, 0, HighestLevel, problem);
    });
    return levels;
}

uint8_t ParseKeysToUse(std::string_view text)
{
    return static_cast<uint8_t>(
        ParseNumber(text, KeyAAlone, BothKeys, "--keys is 1, key A alone, or 2, both keys"));
}

ConditionBytes EncodeOrRefuse(const SectorLevels& levels)
{
    const std::optional<ConditionBytes> bytes = Encode(levels);
    if (!bytes) {
        throw UsageError{RefusalInWords(levels)};
    }
    return *bytes;
}

Trailer ReadTrailer(Encoder& encoder, int32_t sector, const LoginKey& key)
{
    const Trailer trailer(ReadBlock(encoder, TrailerBlock(sector), key));
    if (!InvertedCopiesAgree(trailer.Conditions)) {
        throw OtherFailure{
            Format("the access bits that were read of sector %d, %s, contradict their inverted "
                   "copies: don't write this sector",
                   sector, AccessBitsText(trailer.Conditions).c_str())};
    }
    return trailer;
}

void TakesSector(CommandOptions& command, std::string& sector)
{
    command.Argument("SECTOR", sector, "The sector, 0 to 15, on a 4K card to 39");
}

void TakesLevels(CommandOptions& command, LevelOptions& levels, const char* aboutKeys, Need keysNeeded)
{
    command.Option("--levels", "L0,L1,L2,LT", levels.Levels,
                   "The levels of the three data blocks and of the trailer, as in 13,13,13,12",
                   Need::Required);
    command.Option("--keys", "1|2", levels.KeysToUse, aboutKeys, keysNeeded);
}

} // namespace acg::tool
