#include "tool/SectorAccess.h"

#include "acg/encoder/Enums.h"

#include <bit>
#include <tuple>

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

constexpr int32_t ToKeyB = 4; ///< from a right of key A to that of key B, as a factor

/// The keys that have a right by a level, of which it is the bit for key A.
KeySet KeysIn(int32_t level, int32_t bit)
{
    const unsigned ofA = (level & bit) != 0 ? 1 : 0;
    const unsigned ofB = (level & bit * ToKeyB) != 0 ? 2 : 0;
    return static_cast<KeySet>(ofA | ofB);
}

/// The part of a level that a right is; the inverse of KeysIn.
int32_t LevelOf(KeySet holders, int32_t bit)
{
    return (Has(holders, A) ? bit : 0) + (Has(holders, B) ? bit * ToKeyB : 0);
}

int32_t NearestLevel(const SectorLevels& levels, unsigned slot)
{
    const auto asked = static_cast<uint32_t>(levels.Levels[slot]);
    const auto rank = [&](int32_t level) {
        const auto granted = static_cast<uint32_t>(level);
        return std::tuple(std::popcount(granted ^ asked), std::popcount(granted), level);
    };
    int32_t nearest = 0; // can be stored in any slot
    for (int32_t level = 0; level <= HighestLevel; ++level) {
        SectorLevels alone{.KeysToUse = levels.KeysToUse};
        alone.Levels[slot] = level;
        if (const std::optional<ConditionBytes> bytes = Encode(alone)) {
            const int32_t granted = LevelIn(RightsOfBits(*bytes), slot);
            nearest = rank(granted) < rank(nearest) ? granted : nearest;
        }
    }
    return nearest;
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

int32_t LevelIn(const SectorRights& rights, unsigned slot)
{
    return slot == TrailerSlot ? LevelOf(rights[Part::Keys][Right::Write], scss_A_WriteKeys) +
                                     LevelOf(rights[Part::AccessBits][Right::Write], scss_A_WriteConditions)
                               : LevelOf(rights[slot][Right::Read], scbs_A_Read) +
                                     LevelOf(rights[slot][Right::Write], scbs_A_Write);
}

SectorLevels NearestStorable(SectorLevels levels)
{
    for (unsigned slot = 0; slot < SectorSlots; ++slot) {
        SectorLevels alone{.KeysToUse = levels.KeysToUse};
        alone.Levels[slot] = levels.Levels[slot];
        if (!Encode(alone)) {
            levels.Levels[slot] = NearestLevel(levels, slot);
        }
    }
    return levels;
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
