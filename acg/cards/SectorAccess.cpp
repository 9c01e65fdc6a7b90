#include "acg/cards/SectorAccess.h"

#include "acg/encoder/Enums.h"

namespace acg
{

namespace
{

/// The keys that have a right by a level, of which it is the bit for key A.
Keys KeysIn(int32_t level, int32_t bit)
{
    constexpr int32_t ToKeyB = 4;
    const unsigned ofA = (level & bit) != 0 ? 1 : 0;
    const unsigned ofB = (level & bit * ToKeyB) != 0 ? 2 : 0;
    return static_cast<Keys>(ofA | ofB);
}

BlockRights Without(const BlockRights& rights, const BlockRights& others)
{
    return {Without(rights.Read, others.Read), Without(rights.Write, others.Write),
            Without(rights.Increment, others.Increment), Without(rights.Decrement, others.Decrement)};
}

} // namespace

std::optional<ConditionBytes> Encode(const SectorLevels& Asked)
{
    ConditionBytes bytes{};
    for (unsigned slot = 0; slot < SectorSlots; ++slot) {
        const int32_t level = Asked.Levels[slot];
        const std::optional<AccessTriple> triple =
            slot == TrailerSlot ? TrailerTriple(level, Asked.KeysToUse)
                                : BlockTriple(level, Asked.KeysToUse, Asked.IsValueBlock[slot]);
        if (!triple) {
            return std::nullopt;
        }
        StoreAccessBits(*triple, MaskOf(slot), bytes);
    }
    return bytes;
}

SectorRights RightsGranted(const ConditionBytes& Bytes)
{
    SectorRights rights{.Trailer = TrailerRightsOf(TripleIn(Bytes, TrailerSlot))};
    const BlockRights ofNoKey = rights.Trailer.ReadKeyB == Keys::None
                                    ? BlockRights{}
                                    : BlockRights{Keys::B, Keys::B, Keys::B, Keys::B};
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        rights.Blocks[slot] = Without(BlockRightsOf(TripleIn(Bytes, slot)), ofNoKey);
    }
    return rights;
}

SectorRights RightsAsked(const SectorLevels& Asked)
{
    const int32_t ofTrailer = Asked.Levels[TrailerSlot];
    SectorRights rights{.Trailer = {.WriteKeys = KeysIn(ofTrailer, scss_A_WriteKeys),
                                    .WriteConditions = KeysIn(ofTrailer, scss_A_WriteConditions)}};
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const Keys read = KeysIn(Asked.Levels[slot], scbs_A_Read);
        const Keys write = KeysIn(Asked.Levels[slot], scbs_A_Write);
        rights.Blocks[slot] = Asked.IsValueBlock[slot] ? BlockRights{read, write, write, read}
                                                       : BlockRights{read, write, Keys::None, Keys::None};
    }
    return rights;
}

SectorRights Beyond(const SectorRights& Rights, const SectorRights& Others)
{
    SectorRights beyond{.Trailer = {.WriteKeys = Without(Rights.Trailer.WriteKeys, Others.Trailer.WriteKeys),
                                    .WriteConditions = Without(Rights.Trailer.WriteConditions,
                                                               Others.Trailer.WriteConditions)}};
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        BlockRights& ofBlock = beyond.Blocks[slot];
        ofBlock = Without(Rights.Blocks[slot], Others.Blocks[slot]);
        ofBlock.Increment = Without(ofBlock.Increment, Rights.Blocks[slot].Write);
        ofBlock.Decrement = Without(ofBlock.Decrement, Rights.Blocks[slot].Write);
    }
    return beyond;
}

} // namespace acg
