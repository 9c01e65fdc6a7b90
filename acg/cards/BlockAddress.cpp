#include "acg/cards/BlockAddress.h"

namespace acg
{

namespace
{

constexpr int32_t SmallSectorBlocks = 4;
constexpr int32_t LargeSectorBlocks = 16;
constexpr int32_t FirstLargeSector = 32;
constexpr int32_t FirstLargeBlock = FirstLargeSector * SmallSectorBlocks;

} // namespace

int32_t LoginSector(int32_t blocNumber)
{
    const int32_t sector = SectorOf(blocNumber);
    return sector < FirstLargeSector
               ? sector
               : (sector - FirstLargeSector) * (LargeSectorBlocks / SmallSectorBlocks) + FirstLargeSector;
}

int32_t SectorOf(int32_t blocNumber)
{
    return blocNumber < FirstLargeBlock
               ? blocNumber / SmallSectorBlocks
               : (blocNumber - FirstLargeBlock) / LargeSectorBlocks + FirstLargeSector;
}

int32_t TrailerBlock(int32_t sectorNumber)
{
    const auto sector = static_cast<uint32_t>(sectorNumber);
    const uint32_t next = sectorNumber < FirstLargeSector
                              ? (sector + 1) * SmallSectorBlocks
                              : (sector + 1 - FirstLargeSector) * LargeSectorBlocks + FirstLargeBlock;
    return static_cast<int32_t>(next - 1);
}

} // namespace acg
