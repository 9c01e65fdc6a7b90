// acg trailer and acg preview: what the keys of a sector may do, by its trailer or by levels.
#include "acg/SectorTrailer.h"

#include "acg/AccessWords.h"
#include "acg/Failures.h"
#include "acg/Json.h"
#include "acg/Text.h"
#include "cards/BlockAddress.h"

#include <algorithm>
#include <cstdio>

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

void ParseValueBlocks(std::string_view text, SectorLevels& levels)
{
    for (const std::string_view part : Parts(text)) {
        const int32_t block = ParseNumber(part, 0, DataSlots - 1, "--value is one or more of 0, 1 and 2");
        levels.IsValueBlock[static_cast<size_t>(block)] = true;
    }
}

} // namespace

int32_t ParseSector(std::string_view Text)
{
    return ParseNumber(Text, 0, LastSector, "SECTOR is a number from 0 to 39, on a 1K card to 15");
}

std::array<int32_t, SectorSlots> ParseLevels(std::string_view Text)
{
    constexpr std::string_view problem = "--levels is four levels from 0 to 15, as in 13,13,13,12";
    const std::vector<std::string_view> parts = Parts(Text);
    if (parts.size() != SectorSlots) {
        throw UsageError{std::string(problem)};
    }
    std::array<int32_t, SectorSlots> levels{};
    std::ranges::transform(parts, levels.begin(), [&](std::string_view part) {
        return ParseNumber(part, 0, HighestLevel, problem);
    });
    return levels;
}

uint8_t ParseKeysToUse(std::string_view Text)
{
    return static_cast<uint8_t>(
        ParseNumber(Text, KeyAAlone, BothKeys, "--keys is 1, key A alone, or 2, both keys"));
}

ConditionBytes EncodeOrRefuse(const SectorLevels& Asked)
{
    const std::optional<ConditionBytes> bytes = Encode(Asked);
    if (!bytes) {
        throw UsageError{RefusalInWords(Asked)};
    }
    return *bytes;
}

Block ReadTrailer(Encoder& Opened, int32_t Sector, const Key& With)
{
    const Block trailer = ReadBlock(Opened, TrailerBlock(Sector), With);
    const ConditionBytes bytes = ConditionBytesOf(trailer);
    if (!InvertedCopiesAgree(bytes)) {
        throw OtherFailure{
            Format("the access bits that were read of sector %d, %s, contradict their inverted "
                   "copies: don't write this sector",
                   Sector, AccessBitsText(bytes).c_str())};
    }
    return trailer;
}

int Trailer(const Options& Options)
{
    const int32_t sector = ParseSector(Options.Access.Sector);
    const Key key = TheKey(Options.Key);
    const auto encoder = OpenReader(Options.Parameters);
    const Block trailer = ReadTrailer(*encoder, sector, key);
    const ConditionBytes bytes = ConditionBytesOf(trailer);
    if (Options.Json) {
        std::fputs(Json(ShownAccess{sector, bytes, UserByteOf(trailer), {}}).c_str(), stdout);
        return Done;
    }
    std::printf("Sector %d: access bits %s, byte 9 is %d\nLevels %s\n\n%s", sector,
                AccessBitsText(bytes).c_str(), UserByteOf(trailer), LevelsInWords(bytes).c_str(),
                AccessTable(bytes, sector).c_str());
    return Done;
}

int Preview(const Options& Options)
{
    const AccessOptions& given = Options.Access;
    SectorLevels asked{ParseLevels(given.Levels), ParseKeysToUse(given.KeysToUse)};
    if (!given.ValueBlocks.empty()) {
        ParseValueBlocks(given.ValueBlocks, asked);
    }
    const ConditionBytes bytes = EncodeOrRefuse(asked);
    const std::vector<std::string> deviations = Deviations(asked, bytes, /*Sector=*/{});
    if (Options.Json) {
        std::fputs(Json(ShownAccess{{}, bytes, {}, deviations}).c_str(), stdout);
        return Done;
    }
    std::printf("Access bits %s\nThese levels read back as %s\n\n%s", AccessBitsText(bytes).c_str(),
                LevelsInWords(bytes).c_str(), AccessTable(bytes, /*Sector=*/{}).c_str());
    for (const std::string& line : deviations) {
        std::puts(line.c_str());
    }
    return Done;
}

} // namespace acg::tool
