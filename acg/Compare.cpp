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
    constexpr Block Factory = {0, 0, 0, 0, 0, 0, 0xFF, 0x07, 0x80};
    constexpr unsigned AccessBytes = 0x01C0;
    unsigned known = one.Known & other.Known;
    if ((known & AccessBytes) != AccessBytes) {
        known &= ~AccessBytes;
    }
    Block first = one.Bytes;
    Block second = other.Bytes;
    for (size_t at = 0; at < first.size(); ++at) {
        if ((known >> at & 1) == 0) {
            first[at] = second[at] = Factory[at];
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
    const int32_t sizes[] = {static_cast<int32_t>(one.size()), static_cast<int32_t>(other.size())};
    const int32_t common = std::min(sizes[0], sizes[1]);
    int differences = 0;
    for (int32_t number = 0; number < common; ++number) {
        const DumpedBlock* const blocks[] = {&one[static_cast<size_t>(number)],
                                             &other[static_cast<size_t>(number)]};
        if (*blocks[0] == *blocks[1]) {
            continue;
        }
        ++differences;
        if (IsTrailer(number)) {
            PrintTrailer(number, *blocks[0], *blocks[1]);
            continue;
        }
        for (const DumpedBlock* const block : blocks) {
            std::puts(HexDump(number, block->Bytes, block->Known).c_str());
        }
    }
    if (sizes[0] != sizes[1]) {
        const size_t larger = sizes[0] > sizes[1] ? 0 : 1;
        std::printf("blocks %d to %d are only in %s\n", common, sizes[larger] - 1,
                    Options.Files[larger].c_str());
    }
    std::printf("%d of %d blocks differ\n", differences, common);
    return differences == 0 && sizes[0] == sizes[1] ? Done : Failed;
}

} // namespace acg::tool
