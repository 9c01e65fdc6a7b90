// The addresses of blocks and sectors.
//
// Memory organisation of the Mifare Classic 1K and 4K card (data sheets MF1S50yyX and MF1S70yyX, Rev. 3.2,
// chapter 8):
//
//     blocks   0 to 127   sectors  0 to 31, of 4 blocks
//     blocks 128 to 255   sectors 32 to 39, of 16 blocks (4K only)
//
// No number is tested for range, and the arithmetic wraps at 32 bits. What is sent of a block number and of a
// login sector is their low byte. So the reader doesn't refuse every number beyond the card: block
// 1024 is sent as block 0, and the trailer of sector 96 as that of sector 32.
#pragma once

#include <cstdint>

namespace acg
{

/// The number of a block's sector in the reader's "login": the sector's first block divided by
/// 4. Below sector 33 that is the sector itself.
[[nodiscard]] int32_t LoginSector(int32_t blocNumber);

/// The sector that a block lies in.
[[nodiscard]] int32_t SectorOf(int32_t blocNumber);

/// The last block of a sector.
[[nodiscard]] int32_t TrailerBlock(int32_t sectorNumber);

} // namespace acg
