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

Rights Without(Rights rights, const Rights& others)
{
    for (size_t right = 0; right < rights.size(); ++right) {
        rights[right] = Without(rights[right], others[right]);
    }
    return rights;
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

Rights DataRightsOf(AccessTriple triple)
{
    const auto at = static_cast<size_t>(triple);
    return {BlockRightsOf(triple).Read, BlockRightsOf(triple).Write, Increment[at], Decrement[at]};
}

const TrailerRights& TrailerRightsIn(const ConditionBytes& bytes)
{
    return TrailerRightsOf(TripleIn(bytes, TrailerSlot));
}

SectorRights RightsOfBits(const ConditionBytes& bytes)
{
    const TrailerRights& trailer = TrailerRightsIn(bytes);
    const KeySet noKey = trailer.ReadKeyB == None ? None : B;
    SectorRights rights{};
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        rights[slot] = Without(DataRightsOf(TripleIn(bytes, slot)), {noKey, noKey, noKey, noKey});
    }
    rights[Part::Keys][Right::Write] = trailer.WriteKeys;
    rights[Part::AccessBits] = {trailer.ReadConditions, trailer.WriteConditions};
    rights[Part::KeyB][Right::Read] = trailer.ReadKeyB;
    return rights;
}

SectorRights RightsOfLevels(const SectorLevels& levels)
{
    SectorRights rights{};
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const KeySet read = KeysIn(levels.Levels[slot], scbs_A_Read);
        const KeySet write = KeysIn(levels.Levels[slot], scbs_A_Write);
        rights[slot] = levels.IsValueBlock[slot] ? Rights{read, write, write, read} : Rights{read, write};
    }
    rights[Part::Keys][Right::Write] = KeysIn(levels.Levels[TrailerSlot], scss_A_WriteKeys);
    rights[Part::AccessBits][Right::Write] = KeysIn(levels.Levels[TrailerSlot], scss_A_WriteConditions);
    return rights;
}

SectorRights RightsNotIn(const SectorRights& others, const SectorRights& rights)
{
    SectorRights missing{};
    for (size_t part = 0; part < rights.size(); ++part) {
        const KeySet writers = rights[part][Right::Write];
        const KeySet readers = part < DataSlots ? None : AOrB; // no level says who reads the trailer
        missing[part] = Without(Without(rights[part], others[part]), {readers, None, writers, writers});
    }
    return missing;
}

} // namespace acg::tool
