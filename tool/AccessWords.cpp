#include "tool/AccessWords.h"

#include "acg/cards/BlockAddress.h"
#include "acg/platform/HexText.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

constexpr KeySet Keys[] = {KeySet::A, KeySet::B};

constexpr const char* AccessBits = "access bits"; ///< a row's name

/// What each key may do with a block, or with a part of the trailer.
struct AccessRow {
    std::string What;
    std::vector<std::string> Verbs[2]; ///< "read", "write", ... of key A and of key B
};

/// One for each part.
std::vector<AccessRow> Rows(const SectorRights& rights, SectorNumber sector)
{
    constexpr const char* Names[] = {"read", "write", "increment", "decrement"};
    constexpr const char* OfTrailer[] = {"keys A and B", AccessBits, "key B itself"};
    std::vector<AccessRow> rows;
    for (unsigned part = 0; part < rights.size(); ++part) {
        AccessRow& row = rows.emplace_back();
        row.What = part < DataSlots ? NameOfSlot(part, sector) : OfTrailer[part - DataSlots];
        for (size_t right = 0; right < Right::Count; ++right) {
            for (const size_t key : {0U, 1U}) {
                if (Has(rights[part][right], Keys[key])) {
                    row.Verbs[key].emplace_back(Names[right]);
                }
            }
        }
    }
    return rows;
}

/// Without that of key B, if it is a key.
std::vector<AccessRow> TableRows(const AccessReport& access)
{
    std::vector<AccessRow> rows = Rows(RightsIn(access.Bytes, access.Sector), access.Sector);
    if (TrailerRightsIn(access.Bytes).ReadKeyB == KeySet::None) {
        rows.pop_back();
    }
    return rows;
}

/// As they read back: of the data slots, then of the trailer.
std::array<int32_t, SectorSlots> LevelsIn(const ConditionBytes& bytes)
{
    const auto of = [&](unsigned slot) { return LevelOf(BlockRightsOf(TripleIn(bytes, slot))); };
    return {of(0), of(1), of(2), LevelOf(TrailerRightsIn(bytes))};
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
std::string Sentence(const AccessRow& row, size_t key)
{
    const std::string object = (row.What == AccessBits ? "the " : "") + row.What;
    if (row.Verbs[key].empty()) {
        return Format("%s may do nothing with %s", NameOf(Keys[key]), object.c_str());
    }
    std::string verbs = Joined(row.Verbs[key]);
    if (const size_t comma = verbs.rfind(", "); comma != std::string::npos) {
        verbs.replace(comma, 1, " and");
    }
    return Format("%s may %s %s", NameOf(Keys[key]), verbs.c_str(), object.c_str());
}

void AddDeviations(std::vector<std::string>& lines, const SectorRights& rights, SectorNumber sector,
                   const char* pattern)
{
    for (const AccessRow& row : Rows(rights, sector)) {
        for (const size_t key : {0U, 1U}) {
            if (!row.Verbs[key].empty()) {
                lines.push_back(
                    Format(pattern, NameOf(Keys[key]), Joined(row.Verbs[key]).c_str(), row.What.c_str()));
            }
        }
    }
}

/// What nobody can change again, if the access bits are fixed.
std::string PermanenceText(const AccessReport& access, const TrailerRights& trailer)
{
    std::string text = "FOR GOOD: the rights of this sector's keys can never be changed again.\n";
    text += AreKeysFixed(trailer)
                ? "FOR GOOD: the keys of this sector can never be changed again.\n"
                : Format("The keys can be changed again by %s.\n", NameOf(trailer.WriteKeys));
    const SectorRights rights = RightsIn(access.Bytes, access.Sector);
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const std::string name = NameOfSlot(slot, access.Sector);
        if (rights[slot][Right::Read] == KeySet::None) {
            text += Format("FOR GOOD: %s can never be read again.\n", name.c_str());
        }
        if (rights[slot][Right::Write] == KeySet::None) {
            text += Format("FOR GOOD: %s can never be written again%s.\n", name.c_str(),
                           rights[slot][Right::Decrement] != KeySet::None ? ", only decremented" : "");
        }
    }
    return text;
}

} // namespace

SectorRights RightsIn(const ConditionBytes& bytes, SectorNumber sector)
{
    SectorRights rights = RightsOfBits(bytes);
    if (sector == 0) {
        rights[0] = {rights[0][Right::Read]};
    }
    return rights;
}

const char* NameOf(KeySet holders)
{
    constexpr const char* Names[] = {"no key", "key A", "key B", "key A or key B"};
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

std::string LevelWords(const SectorRights& rights, unsigned slot)
{
    const KeyWords& words = slot == TrailerSlot ? TrailerWords : BlockWords;
    const auto level = static_cast<size_t>(LevelIn(rights, slot));
    return std::string(words[level % words.size()]).append("/").append(words[level / words.size()]);
}

std::string LevelWords(const SectorRights& rights)
{
    return LevelWords(rights, 0) + ',' + LevelWords(rights, 1) + ',' + LevelWords(rights, 2) + ',' +
           LevelWords(rights, TrailerSlot);
}

std::string FormatLevels(const ConditionBytes& bytes)
{
    const auto [first, second, third, trailer] = LevelsIn(bytes);
    return Format("%d,%d,%d,%d with %s: %s", first, second, third, trailer,
                  KeysUsedBy(TrailerRightsIn(bytes)) == KeyAAlone ? "key A alone" : "both keys",
                  LevelWords(RightsOfBits(bytes)).c_str());
}

std::string AccessHead(const std::string& title, const AccessReport& access)
{
    return Format("%s: access bits %s, byte 9 is %d\nLevels %s", title.c_str(), ToHex(access.Bytes).c_str(),
                  access.UserByte.value_or(0), FormatLevels(access.Bytes).c_str());
}

std::string AccessTable(const AccessReport& access)
{
    constexpr const char* Columns = "%-16s%-18s%s\n";
    std::string text = Format(Columns, "", "key A may", "key B may");
    for (const AccessRow& row : TableRows(access)) {
        text +=
            Format(Columns, row.What.c_str(), InShort(row.Verbs[0]).c_str(), InShort(row.Verbs[1]).c_str());
    }
    const TrailerRights& trailer = TrailerRightsIn(access.Bytes);
    if (trailer.ReadKeyB != KeySet::None) {
        text += "Key B is only data here: it can be read, and opens nothing.\n";
    }
    text += AreConditionsFixed(trailer)
                ? PermanenceText(access, trailer)
                : Format("All of this can be changed again by %s.\n", NameOf(trailer.WriteConditions));
    for (const std::string& line : access.Deviations) {
        text += line + '\n';
    }
    return text;
}

JsonObject ToJson(const AccessReport& access)
{
    const TrailerRights& trailer = TrailerRightsIn(access.Bytes);
    JsonObject rows = JsonObject::array();
    for (const AccessRow& row : TableRows(access)) {
        rows.push_back({{"what", row.What}, {"keyA", row.Verbs[0]}, {"keyB", row.Verbs[1]}});
    }
    return {
        {"sector", access.Sector ? JsonObject(*access.Sector) : JsonObject()},
        {"accessBits", ToHex(access.Bytes)},
        {"byte9", access.UserByte ? JsonObject(*access.UserByte) : JsonObject()},
        {"levels", LevelsIn(access.Bytes)},
        {"levelsInWords", LevelWords(RightsOfBits(access.Bytes))},
        {"keys", KeysUsedBy(trailer)},
        {"may", rows},
        {"accessFixedForGood", AreConditionsFixed(trailer)},
        {"keysFixedForGood", AreKeysFixed(trailer)},
        {"deviations", access.Deviations},
    };
}

std::vector<std::string> Deviations(const SectorLevels& levels, const ConditionBytes& bytes,
                                    SectorNumber sector)
{
    const SectorRights asked = RightsOfLevels(levels);
    const SectorRights granted = RightsIn(bytes, sector);
    std::vector<std::string> lines;
    AddDeviations(lines, RightsNotIn(asked, granted), sector, "Beyond what was asked, %s may %s: %s");
    AddDeviations(lines, RightsNotIn(granted, asked), sector, "Asked for but not granted, %s may not %s: %s");
    return lines;
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
    const std::vector<AccessRow> before = Rows(RightsIn(bytes[0], sector), sector);
    const std::vector<AccessRow> after = Rows(RightsIn(bytes[1], sector), sector);
    for (size_t row = 0; row < before.size(); ++row) {
        add(Sentence(before[row], 0), Sentence(after[row], 0));
        add(Sentence(before[row], 1), Sentence(after[row], 1));
    }
    return lines;
}

} // namespace acg::tool
