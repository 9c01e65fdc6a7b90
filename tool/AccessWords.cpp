#include "tool/AccessWords.h"

#include "acg/cards/BlockAddress.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

/// The manufacturer's block can't be written, whatever the access bits say.
SectorRights RightsIn(const ConditionBytes& bytes, SectorNumber sector)
{
    SectorRights rights = RightsGranted(bytes);
    if (sector == 0) {
        rights.Blocks[0].Write = rights.Blocks[0].Increment = rights.Blocks[0].Decrement = KeySet::None;
    }
    return rights;
}

constexpr const char* AccessBits = "access bits"; ///< a row's name

struct NamedRight {
    const char* Name;
    KeySet Holders;
};

std::vector<std::string> OfKey(KeySet key, const std::vector<NamedRight>& rights)
{
    std::vector<std::string> names;
    for (const auto& [name, holders] : rights) {
        if (Has(holders, key)) {
            names.emplace_back(name);
        }
    }
    return names;
}

AccessRow Row(std::string what, const std::vector<NamedRight>& rights)
{
    return {std::move(what), OfKey(KeySet::A, rights), OfKey(KeySet::B, rights)};
}

std::vector<AccessRow> Rows(const SectorRights& rights, SectorNumber sector)
{
    std::vector<AccessRow> rows;
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const DataRights& block = rights.Blocks[slot];
        rows.push_back(Row(NameOfSlot(slot, sector), {{"read", block.Read},
                                                      {"write", block.Write},
                                                      {"increment", block.Increment},
                                                      {"decrement", block.Decrement}}));
    }
    const TrailerRights& trailer = rights.Trailer;
    rows.push_back(Row("keys A and B", {{"write", trailer.WriteKeys}}));
    rows.push_back(Row(AccessBits, {{"read", trailer.ReadConditions}, {"write", trailer.WriteConditions}}));
    if (trailer.ReadKeyB != KeySet::None) {
        rows.push_back(Row("key B itself", {{"read", trailer.ReadKeyB}}));
    }
    return rows;
}

std::string Joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text.empty() ? "nothing" : text;
}

/// For a column of the table.
std::string InShort(const std::vector<std::string>& names)
{
    constexpr size_t AllOfABlock = 4;
    return names.size() == AllOfABlock ? "everything" : Joined(names);
}

/// "key A may read and write block 4".
std::string Sentence(const char* key, const std::vector<std::string>& rights, const std::string& what)
{
    const std::string object = (what == AccessBits ? "the " : "") + what;
    if (rights.empty()) {
        return Format("%s may do nothing with %s", key, object.c_str());
    }
    std::string verbs = Joined(rights);
    if (const size_t comma = verbs.rfind(", "); comma != std::string::npos) {
        verbs.replace(comma, 1, " and");
    }
    return Format("%s may %s %s", key, verbs.c_str(), object.c_str());
}

void AddDeviations(std::vector<std::string>& lines, const SectorRights& rights, SectorNumber sector,
                   const char* pattern)
{
    for (const AccessRow& row : Rows(rights, sector)) {
        for (const auto& [name, words] : {std::pair("key A", &row.KeyA), std::pair("key B", &row.KeyB)}) {
            if (!words->empty()) {
                lines.push_back(Format(pattern, name, Joined(*words).c_str(), row.What.c_str()));
            }
        }
    }
}

} // namespace

const char* NameOf(KeySet holders)
{
    constexpr const char* Names[] = {"nobody", "key A", "key B", "key A or key B"};
    return Names[static_cast<size_t>(holders)];
}

std::string NameOfSlot(unsigned slot, SectorNumber sector)
{
    if (!sector) {
        return Format("data block %u", slot);
    }
    const int32_t first = TrailerBlock(*sector - 1) + 1;
    const int32_t inSlot = (TrailerBlock(*sector) - first) / static_cast<int32_t>(DataSlots);
    const int32_t block = first + static_cast<int32_t>(slot) * inSlot;
    return inSlot == 1 ? Format("block %d", block) : Format("blocks %d-%d", block, block + inSlot - 1);
}

std::vector<AccessRow> AccessRows(const ConditionBytes& bytes, SectorNumber sector)
{
    return Rows(RightsIn(bytes, sector), sector);
}

std::string AccessBitsText(const ConditionBytes& bytes)
{
    return Format("%02X%02X%02X", bytes[0], bytes[1], bytes[2]);
}

std::string FormatLevels(const ConditionBytes& bytes)
{
    std::string levels;
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        levels += std::to_string(LevelOf(BlockRightsOf(TripleIn(bytes, slot)))) + ",";
    }
    const TrailerRights& trailer = TrailerRightsOf(TripleIn(bytes, TrailerSlot));
    return levels + std::to_string(LevelOf(trailer)) +
           (KeysUsedBy(trailer) == KeyAAlone ? " with key A alone" : " with both keys");
}

std::string AccessTable(const ConditionBytes& bytes, SectorNumber sector)
{
    constexpr const char* Columns = "%-16s%-18s%s\n";
    std::string text = Format(Columns, "", "key A may", "key B may");
    for (const AccessRow& row : AccessRows(bytes, sector)) {
        text += Format(Columns, row.What.c_str(), InShort(row.KeyA).c_str(), InShort(row.KeyB).c_str());
    }
    const SectorRights rights = RightsIn(bytes, sector);
    const TrailerRights& trailer = rights.Trailer;
    if (trailer.ReadKeyB != KeySet::None) {
        text += "Key B is only data here: it can be read, and opens nothing.\n";
    }
    if (!AreConditionsFixed(trailer)) {
        return text + Format("All of this can be changed again by %s.\n", NameOf(trailer.WriteConditions));
    }
    text += "FOR GOOD: nobody can ever change again what the keys of this sector may do.\n";
    text += AreKeysFixed(trailer)
                ? "FOR GOOD: nobody can ever change the keys of this sector again.\n"
                : Format("The keys can be changed again by %s.\n", NameOf(trailer.WriteKeys));
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const DataRights& block = rights.Blocks[slot];
        const std::string name = NameOfSlot(slot, sector);
        if (block.Read == KeySet::None) {
            text += Format("FOR GOOD: %s can never be read again.\n", name.c_str());
        }
        if (block.Write == KeySet::None) {
            text += Format("FOR GOOD: %s can never be written again%s.\n", name.c_str(),
                           block.Decrement != KeySet::None ? ", only decremented" : "");
        }
    }
    return text;
}

std::vector<std::string> Deviations(const SectorLevels& levels, const ConditionBytes& bytes,
                                    SectorNumber sector)
{
    const SectorRights asked = RightsAsked(levels);
    const SectorRights granted = RightsIn(bytes, sector);
    std::vector<std::string> lines;
    AddDeviations(lines, RightsNotIn(asked, granted), sector, "Beyond what was asked, %s may %s: %s");
    AddDeviations(lines, RightsNotIn(granted, asked), sector, "Asked for but not granted, %s may not %s: %s");
    return lines;
}

std::string RefusalInWords(const SectorLevels& levels)
{
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (!BlockTriple(levels.Levels[slot], levels.KeysToUse, false)) {
            return Format(
                "level %d can't be stored for a data block with both keys: the card can't let key A "
                "do what key B may not",
                levels.Levels[slot]);
        }
    }
    return Format("level %d can't be stored for the trailer with both keys, only 0, 4, 8 and 12: if key B is "
                  "a key, the card doesn't let key A write the trailer",
                  levels.Levels[TrailerSlot]);
}

std::vector<TrailerDifference> TrailerDifferences(const Trailer& first, const Trailer& second, int32_t sector)
{
    std::vector<TrailerDifference> lines;
    if (first.KeyA != second.KeyA) {
        lines.push_back({' ', "key A differs"});
    }
    if (first.KeyB != second.KeyB) {
        lines.push_back({' ', "key B differs"});
    }
    const auto add = [&](const std::string& one, const std::string& other) {
        if (one != other) {
            lines.push_back({'<', one});
            lines.push_back({'>', other});
        }
    };
    add(Format("byte 9 is %u", first.UserByte), Format("byte 9 is %u", second.UserByte));
    const ConditionBytes bytes[] = {first.Conditions, second.Conditions};
    for (const char mark : {'<', '>'}) {
        if (!InvertedCopiesAgree(bytes[mark == '<' ? 0 : 1])) {
            lines.push_back({mark, "the access bits contradict themselves: the card would block the sector"});
        }
    }
    const std::vector<AccessRow> before = AccessRows(bytes[0], sector);
    const std::vector<AccessRow> after = AccessRows(bytes[1], sector);
    for (size_t row = 0; row < std::max(before.size(), after.size()); ++row) {
        const AccessRow none = {"key B itself", {}, {}};
        const AccessRow& one = row < before.size() ? before[row] : none;
        const AccessRow& other = row < after.size() ? after[row] : none;
        add(Sentence("key A", one.KeyA, one.What), Sentence("key A", other.KeyA, other.What));
        add(Sentence("key B", one.KeyB, one.What), Sentence("key B", other.KeyB, other.What));
    }
    return lines;
}

} // namespace acg::tool
