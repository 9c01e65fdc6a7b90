// Access levels, as the host speaks of them, and the access bits of a sector trailer.
//
// What the card does with each combination of bits is published in the data sheets MF1S50yyX and MF1S70yyX,
// chapter 8.7. Which level becomes which combination, which levels are refused, and which level a combination
// reads back as are this component's decisions: docs/access-levels.md.
//
// Bytes 6, 7 and 8 of the trailer; bit i of each nibble belongs to slot i, and ~ marks the inverted copies:
//
//              high nibble        low nibble
//     byte 6   ~C2 3 2 1 0        ~C1 3 2 1 0
//     byte 7    C1 3 2 1 0        ~C3 3 2 1 0
//     byte 8    C3 3 2 1 0         C2 3 2 1 0
//
// Slots 0, 1 and 2 are the data blocks of a sector of 4 blocks, or five blocks each in a sector of 16; slot 3
// is the trailer itself.
#pragma once

#include "cards/ConditionBytes.h"

#include <cstdint>
#include <string_view>

namespace acg
{

/// The access bits of one slot: three characters "0" or "1", in the order C1, C2, C3.
using AccessTriple = std::string_view;

/// In place of a triple: the level can't be stored.
inline constexpr AccessTriple RefusedLevel;

inline constexpr int32_t HighestLevel = 15;

/// The triple of a data block's level, which is at least 0.
[[nodiscard]] AccessTriple BlockTriple(int32_t Level, uint8_t KeysToUse, bool IsValueBlock);

/// The triple of the trailer's level, which is at least 0.
[[nodiscard]] AccessTriple TrailerTriple(int32_t Level, uint8_t KeysToUse);

/// Stores the triple in the slot with that mask (1, 2, 4 or 8), inverted copies included.
void StoreAccessBits(AccessTriple Triple, uint8_t Mask, ConditionBytes& Bytes);

/// What a triple reads back as.
struct DecodedAccess {
    int32_t BlockLevel;   ///< in a data slot: an SCBS level
    uint8_t KeysUsed;     ///< in the trailer's slot: KeyAAlone where key B can be read out, else BothKeys
    int32_t TrailerLevel; ///< in the trailer's slot: an SCSS level
};

/// Decodes the slot, 0 to 3, from its plain bits. The inverted copies aren't compared.
[[nodiscard]] const DecodedAccess& DecodeSlot(const ConditionBytes& Bytes, unsigned Slot);

} // namespace acg
