// acg compare: where two dumps differ.
#include "acg/AccessWords.h"
#include "acg/Blocks.h"
#include "acg/Commands.h"
#include "acg/DumpFile.h"
#include "acg/Failures.h"
#include "acg/Text.h"
#include "cards/BlockAddress.h"

#include <algorithm>
#include <cstdio>

namespace acg::tool
{

namespace
{

/// Keys are compared, but not shown. What isn't known of both counts as alike, access bits as a whole.
void PrintTrailer(int32_t number, const DumpedBlock& one, const DumpedBlock& other)
{
    constexpr Block factory = {0, 0, 0, 0, 0, 0, 0xFF, 0x07, 0x80};
    constexpr unsigned accessBits = 0x01C0;
    unsigned known = one.Known & other.Known;
    if ((known & accessBits) != accessBits) {
        known &= ~accessBits;
    }
    Block first = one.Bytes;
    Block second = other.Bytes;
    for (size_t at = 0; at < first.size(); ++at) {
        if ((known >> at & 1) == 0) {
            first[at] = second[at] = factory[at];
        }
    }
    std::printf("block %d, the trailer of sector %d:\n", number, SectorOf(number));
    for (const std::string& difference : TrailerDifferences(first, second, SectorOf(number))) {
        std::printf("     %s\n", difference.c_str());
    }
    if (one.Known != other.Known) {
        std::puts("     not all of it is known in both");
    }
}

} // namespace

int Compare(const Options& Options)
{
    const Dump one = ReadDump(Options.Files.front());
    const Dump other = ReadDump(Options.Files.back());
    const size_t common = std::min(one.size(), other.size());
    int differences = 0;
    for (size_t at = 0; at < common; ++at) {
        const auto number = static_cast<int32_t>(at);
        if (one[at] == other[at]) {
            continue;
        }
        ++differences;
        if (IsTrailer(number)) {
            PrintTrailer(number, one[at], other[at]);
            continue;
        }
        for (const DumpedBlock* const block : {&one[at], &other[at]}) {
            std::puts(HexDump(number, block->Bytes, block->Known).c_str());
        }
    }
    if (one.size() != other.size()) {
        const bool isFirst = one.size() > common;
        std::printf("blocks %zu to %zu are only in %s\n", common, std::max(one.size(), other.size()) - 1,
                    Options.Files[isFirst ? 0 : 1].c_str());
    }
    std::printf("%d of %zu blocks differ\n", differences, common);
    return differences == 0 && one.size() == other.size() ? Done : Failed;
}

} // namespace acg::tool
