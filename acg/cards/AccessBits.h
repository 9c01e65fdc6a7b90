// Access levels, as the host speaks of them, the access bits of a sector trailer, and what the card grants
// for them.
//
// What the card does with each combination of bits is published in the data sheets MF1S50yyX and MF1S70yyX,
// Rev. 3.2, chapter 8.7. Which level becomes which combination, which levels are refused, and which level a
// combination reads back as are this component's decisions: docs/access-levels.md.
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

#include "acg/encoder/Enums.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace acg
{

/// The access bits of one slot, in the order C1, C2, C3.
enum class AccessTriple : uint8_t {
    Bits000,
    Bits001,
    Bits010,
    Bits011,
    Bits100,
    Bits101,
    Bits110,
    Bits111
};

inline constexpr int32_t HighestLevel = 15;

inline constexpr unsigned DataSlots = 3;
inline constexpr unsigned TrailerSlot = DataSlots;
inline constexpr unsigned SectorSlots = DataSlots + 1;

/// The bit of a slot in each nibble of the condition bytes.
[[nodiscard]] constexpr uint8_t MaskOf(unsigned slot)
{
    return static_cast<uint8_t>(1U << slot);
}

/// The triple of a data block's level, which is at least 0; nothing for a level that can't be stored.
[[nodiscard]] std::optional<AccessTriple> BlockTriple(int32_t level, uint8_t keysToUse, bool isValueBlock);

/// The triple of the trailer's level, which is at least 0; nothing for a level that can't be stored.
[[nodiscard]] std::optional<AccessTriple> TrailerTriple(int32_t level, uint8_t keysToUse);

/// Stores the triple in the slot with that mask (1, 2, 4 or 8), inverted copies included.
void StoreAccessBits(AccessTriple triple, uint8_t mask, ConditionBytes& bytes);

/// Bytes 6 to 8 and byte 9 of a trailer, which has 32 characters. Of a pair that isn't hexadecimal, the
/// digits before the first other character count; blanks are skipped.
[[nodiscard]] ConditionBytes ConditionBytesOf(std::wstring_view trailer);
[[nodiscard]] uint8_t UserByteOf(std::wstring_view trailer);

/// The triple of the slot, 0 to 3, by its plain bits. The inverted copies aren't compared.
[[nodiscard]] AccessTriple TripleIn(const ConditionBytes& bytes, unsigned slot);

/// The keys that have a right, as a set.
enum class KeySet : uint8_t {
    None = 0,
    A = 1,
    B = 2,
    AOrB = A | B, ///< either of them
};

/// key: one of them.
[[nodiscard]] constexpr bool Has(KeySet set, KeySet key)
{
    return (static_cast<unsigned>(set) & static_cast<unsigned>(key)) != 0;
}

/// What may be done with a data block, but for incrementing and decrementing.
struct BlockRights {
    KeySet Read;
    KeySet Write;
};

/// What may be done with a trailer. Key A can never be read.
struct TrailerRights {
    KeySet WriteKeys;
    KeySet WriteConditions; ///< the access bits of all slots, and byte 9
    KeySet ReadConditions;
    KeySet ReadKeyB; ///< if any key has it, key B is data and has no rights
};

/// What the card grants for a triple of a data slot, if key B is a key.
[[nodiscard]] const BlockRights& BlockRightsOf(AccessTriple triple);
/// What the card grants for a triple of the trailer's slot.
[[nodiscard]] const TrailerRights& TrailerRightsOf(AccessTriple triple);

/// The SCBS level that ReadSectorTrailer reports for these rights.
[[nodiscard]] int32_t LevelOf(const BlockRights& rights);
/// The SCSS level that ReadSectorTrailer reports for these rights.
[[nodiscard]] int32_t LevelOf(const TrailerRights& rights);
/// The key mode that it reports for them: KeyAAlone if key B can be read out, else BothKeys.
[[nodiscard]] uint8_t KeysUsedBy(const TrailerRights& rights);

} // namespace acg
