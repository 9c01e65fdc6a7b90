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

int32_t LoginSector(int32_t BlocNumber)
{
    const int32_t sector = SectorOf(BlocNumber);
    return sector < FirstLargeSector
               ? sector
               : (sector - FirstLargeSector) * (LargeSectorBlocks / SmallSectorBlocks) + FirstLargeSector;
}

int32_t SectorOf(int32_t BlocNumber)
{
    return BlocNumber < FirstLargeBlock
               ? BlocNumber / SmallSectorBlocks
               : (BlocNumber - FirstLargeBlock) / LargeSectorBlocks + FirstLargeSector;
}

int32_t TrailerBlock(int32_t SectorNumber)
{
    const auto sector = static_cast<uint32_t>(SectorNumber);
    const uint32_t firstBehind = SectorNumber < FirstLargeSector
                                     ? (sector + 1) * SmallSectorBlocks
                                     : (sector + 1 - FirstLargeSector) * LargeSectorBlocks + FirstLargeBlock;
    return static_cast<int32_t>(firstBehind - 1);
}

int32_t BlockBefore(int32_t BlocNumber, uint32_t Blocks)
{
    return static_cast<int32_t>(static_cast<uint32_t>(BlocNumber) - Blocks);
}

} // namespace acg
