// acg read: blocks in hexadecimal and as characters.
#include "acg/Blocks.h"
#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Json.h"
#include "acg/Text.h"

#include <cstdio>

namespace acg::tool
{

namespace
{

struct BlockRange {
    int32_t First;
    int32_t Last;
};

BlockRange ParseBlocks(const std::string& text)
{
    const size_t sign = text.find('-', 1);
    const int32_t first = ParseBlockNumber(text.substr(0, sign));
    const int32_t last = sign == std::string::npos ? first : ParseBlockNumber(text.substr(sign + 1));
    if (last < first) {
        throw UsageError{"BLOCK-BLOCK ends before it begins"};
    }
    return {first, last};
}

} // namespace

int Read(const Options& Options)
{
    const BlockRange range = ParseBlocks(Options.Blocks);
    const Key key = TheKey(Options.Key);
    const auto encoder = OpenReader(Options.Parameters);
    std::vector<ShownBlock> shown;
    for (int32_t number = range.First; number <= range.Last; ++number) {
        const Block block = ReadBlock(*encoder, number, key);
        const uint16_t known = IsTrailer(number) ? AllButKeys : AllKnown;
        if (Options.Json) {
            shown.push_back({number, Digits(block, known, ""), Characters(block, known)});
        } else {
            std::puts(HexDump(number, block, known).c_str());
        }
    }
    if (Options.Json) {
        std::fputs(Json(shown).c_str(), stdout);
    }
    return Done;
}

} // namespace acg::tool
