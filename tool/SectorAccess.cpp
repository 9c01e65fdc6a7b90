#include "tool/SectorAccess.h"

#include "acg/encoder/Enums.h"

namespace acg::tool
{

namespace
{

// Who may increment and decrement a block, in the order of AccessTriple.
using enum KeySet;
constexpr KeySet Increment[] = {AOrB, None, None, None, None, None, B, None};
constexpr KeySet Decrement[] = {AOrB, AOrB, None, None, None, None, AOrB, None};

KeySet Without(KeySet set, KeySet others)
{
    return static_cast<KeySet>(static_cast<unsigned>(set) & ~static_cast<unsigned>(others));
}

DataRights Without(const DataRights& rights, const DataRights& others)
{
    return {{Without(rights.Read, others.Read), Without(rights.Write, others.Write)},
            Without(rights.Increment, others.Increment),
            Without(rights.Decrement, others.Decrement)};
}

/// The keys that have a right by a level, of which it is the bit for key A.
KeySet KeysIn(int32_t level, int32_t bit)
{
    constexpr int32_t ToKeyB = 4;
    const unsigned ofA = (level & bit) != 0 ? 1 : 0;
    const unsigned ofB = (level & bit * ToKeyB) != 0 ? 2 : 0;
    return static_cast<KeySet>(ofA | ofB);
}

} // namespace

std::optional<ConditionBytes> Encode(const SectorLevels& levels)
{
    ConditionBytes bytes{};
    for (unsigned slot = 0; slot < SectorSlots; ++slot) {
        const int32_t level = levels.Levels[slot];
        const std::optional<AccessTriple> triple =
            slot == TrailerSlot ? TrailerTriple(level, levels.KeysToUse)
                                : BlockTriple(level, levels.KeysToUse, levels.IsValueBlock[slot]);
        if (!triple) {
            return std::nullopt;
        }
        StoreAccessBits(*triple, MaskOf(slot), bytes);
    }
    return bytes;
}

bool InvertedCopiesAgree(const ConditionBytes& bytes)
{
    ConditionBytes stored = bytes;
    for (unsigned slot = 0; slot < SectorSlots; ++slot) {
        StoreAccessBits(TripleIn(bytes, slot), MaskOf(slot), stored);
    }
    return stored == bytes;
}

DataRights DataRightsOf(AccessTriple triple)
{
    const auto at = static_cast<size_t>(triple);
    return {BlockRightsOf(triple), Increment[at], Decrement[at]};
}

SectorRights RightsGranted(const ConditionBytes& bytes)
{
    SectorRights rights{.Trailer = TrailerRightsOf(TripleIn(bytes, TrailerSlot))};
    const KeySet noKey = rights.Trailer.ReadKeyB == None ? None : B;
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        rights.Blocks[slot] = Without(DataRightsOf(TripleIn(bytes, slot)), {{noKey, noKey}, noKey, noKey});
    }
    return rights;
}

SectorRights RightsAsked(const SectorLevels& levels)
{
    const int32_t ofTrailer = levels.Levels[TrailerSlot];
    SectorRights rights{.Trailer = {.WriteKeys = KeysIn(ofTrailer, scss_A_WriteKeys),
                                    .WriteConditions = KeysIn(ofTrailer, scss_A_WriteConditions)}};
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const KeySet read = KeysIn(levels.Levels[slot], scbs_A_Read);
        const KeySet write = KeysIn(levels.Levels[slot], scbs_A_Write);
        rights.Blocks[slot] = levels.IsValueBlock[slot] ? DataRights{{read, write}, write, read}
                                                        : DataRights{{read, write}, None, None};
    }
    return rights;
}

SectorRights RightsNotIn(const SectorRights& others, const SectorRights& rights)
{
    const TrailerRights& trailer = rights.Trailer;
    SectorRights missing{
        .Trailer = {.WriteKeys = Without(trailer.WriteKeys, others.Trailer.WriteKeys),
                    .WriteConditions = Without(trailer.WriteConditions, others.Trailer.WriteConditions)}};
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const DataRights& block = rights.Blocks[slot];
        missing.Blocks[slot] =
            Without(Without(block, others.Blocks[slot]), {{None, None}, block.Write, block.Write});
    }
    return missing;
}

} // namespace acg::tool
