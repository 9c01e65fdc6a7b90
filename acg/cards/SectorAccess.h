// The access to a sector as a whole: what a set of levels requests and grants, and what can be changed
// again.
//
// Whoever may write the conditions can grant any right. So once no key may, the rights are fixed for good.
#pragma once

#include "acg/cards/AccessBits.h"

#include <array>
#include <cstdint>
#include <optional>

namespace acg
{

/// What WriteSectorTrailer is given, and which blocks the encoder has written as value blocks.
struct SectorLevels {
    std::array<int32_t, SectorSlots> Levels{}; ///< of the data slots, then the trailer: 0 to 15
    uint8_t KeysToUse = 0;                     ///< KeyAAlone, else both keys
    std::array<bool, DataSlots> IsValueBlock{};
};

/// The access bits of a sector with these levels; nothing where the card can't store one of them.
[[nodiscard]] std::optional<ConditionBytes> Encode(const SectorLevels& Asked);

struct SectorRights {
    std::array<BlockRights, DataSlots> Blocks;
    TrailerRights Trailer;
};

/// What the card grants. The inverted copies aren't compared.
[[nodiscard]] SectorRights RightsGranted(const ConditionBytes& Bytes);

/// What the levels say. Of a value block, a key that reads it may decrement it, and one that writes it may
/// increment it.
[[nodiscard]] SectorRights RightsAsked(const SectorLevels& Asked);

/// The rights to data blocks, and to write the trailer, that Rights has and Others lacks. A key that may
/// write a block gains nothing by incrementing or decrementing it, so for such a key those don't count.
[[nodiscard]] SectorRights Beyond(const SectorRights& Rights, const SectorRights& Others);

/// No key can ever change the rights of the sector again.
[[nodiscard]] constexpr bool AreConditionsFixed(const TrailerRights& Rights)
{
    return Rights.WriteConditions == Keys::None;
}

/// No key can ever change the keys of the sector again. Whoever may change the conditions can grant that
/// right.
[[nodiscard]] constexpr bool AreKeysFixed(const TrailerRights& Rights)
{
    return AreConditionsFixed(Rights) && Rights.WriteKeys == Keys::None;
}

} // namespace acg
