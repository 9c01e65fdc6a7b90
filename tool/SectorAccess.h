// The access to a sector as a whole: what a set of levels requests and grants, and what can be changed
// again.
//
// Whoever may write the conditions can grant any right. So once no key may, the rights are fixed for good.
#pragma once

#include "acg/cards/AccessBits.h"

#include <array>
#include <cstdint>
#include <optional>

namespace acg::tool
{

/// What WriteSectorTrailer is given, and which blocks the encoder has written as value blocks.
struct SectorLevels {
    std::array<int32_t, SectorSlots> Levels{}; ///< of the data slots, then the trailer: 0 to 15
    uint8_t KeysToUse = 0;                     ///< KeyAAlone, else both keys
    std::array<bool, DataSlots> IsValueBlock{};
};

/// The access bits of a sector with these levels; nothing if the card can't store one of them.
[[nodiscard]] std::optional<ConditionBytes> Encode(const SectorLevels& levels);

/// False: the card has blocked the sector for good, or will once these bytes are written.
[[nodiscard]] bool InvertedCopiesAgree(const ConditionBytes& bytes);

/// Indexes of Rights. Decrement includes transfer and restore.
struct Right {
    enum {
        Read,
        Write,
        Increment,
        Decrement,
        Count
    };
};
/// The keys that have each right to a part of a sector.
using Rights = std::array<KeySet, Right::Count>;

/// What the card grants for a triple of a data slot, if key B is a key.
[[nodiscard]] Rights DataRightsOf(AccessTriple triple);

/// Indexes of SectorRights, after those of the data slots.
struct Part {
    enum {
        Keys = DataSlots,
        AccessBits,
        KeyB,
        Count
    };
};
using SectorRights = std::array<Rights, Part::Count>;

/// What the card grants. The inverted copies aren't compared.
[[nodiscard]] SectorRights RightsOfBits(const ConditionBytes& bytes);
[[nodiscard]] const TrailerRights& TrailerRightsIn(const ConditionBytes& bytes);

/// What the levels say. Of a value block, a key that reads it may decrement it, and one that writes it may
/// increment it.
[[nodiscard]] SectorRights RightsOfLevels(const SectorLevels& levels);

/// What a slot's part of the rights is as a level: the sum of what key A and key B may.
[[nodiscard]] int32_t LevelIn(const SectorRights& rights, unsigned slot);

/// The levels, with each that the card can't store replaced by the nearest that it can: the one that grants
/// the fewest other rights, and of several the one that grants least.
[[nodiscard]] SectorLevels NearestStorable(SectorLevels levels);

/// The rights to data blocks, and to write the trailer, that aren't among the others. A key that may
/// write a block gains nothing by incrementing or decrementing it, so for such a key those don't count.
[[nodiscard]] SectorRights RightsNotIn(const SectorRights& others, const SectorRights& rights);

/// No key can ever change the rights of the sector again.
[[nodiscard]] constexpr bool AreConditionsFixed(const TrailerRights& rights)
{
    return rights.WriteConditions == KeySet::None;
}

/// No key can ever change the keys of the sector again. Whoever may change the conditions can grant that
/// right.
[[nodiscard]] constexpr bool AreKeysFixed(const TrailerRights& rights)
{
    return AreConditionsFixed(rights) && rights.WriteKeys == KeySet::None;
}

} // namespace acg::tool
