// acg card: the whole card in one table.
#include "acg/cards/BlockAddress.h"
#include "acg/platform/HexText.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/CommandLine.h"
#include "tool/Text.h"
#include "tool/WholeCard.h"

#include <algorithm>
#include <set>

namespace acg::tool
{

namespace
{

struct Options {
    KeyOptions Key;
    std::string Card; ///< --card
    std::string From; ///< --from
};

/// Positions in the list of keys, or blocks: "4, 6-9".
std::string Ranges(const std::vector<int32_t>& numbers)
{
    std::string text;
    for (size_t from = 0, end = 0; from < numbers.size(); from = end) {
        for (end = from + 1; end < numbers.size() && numbers[end] == numbers[end - 1] + 1;) {
            ++end;
        }
        text += Format(from == 0 ? "%d" : ", %d", numbers[from]);
        text += end - from > 1 ? Format("-%d", numbers[end - 1]) : "";
    }
    return text;
}

/// "block 4", "blocks 4, 6-9".
std::string NameOfBlocks(const std::vector<int32_t>& numbers)
{
    return (numbers.size() == 1 ? "block " : "blocks ") + Ranges(numbers);
}

int32_t NumberOf(size_t key)
{
    return static_cast<int32_t>(key) + 1;
}

/// One line of the table.
struct Row {
    int32_t Sector;
    Opening OpenedBy;
    std::optional<ConditionBytes> Bits;       ///< none if they weren't read
    std::array<std::string, SectorSlots> May; ///< "?" without the bits
    std::vector<int32_t> ValueBlocks;
    std::vector<std::string> Remarks;
};

void AddRemarks(Row& row, const KeyRing& keys, const std::vector<int32_t>& unread)
{
    const bool isBlocked = row.Bits && !InvertedCopiesAgree(*row.Bits);
    if (isBlocked) {
        row.Remarks.emplace_back("the access bits contradict themselves: the card blocks the sector");
    } else if (!row.OpenedBy.A && !row.OpenedBy.B) {
        row.Remarks.emplace_back("no key opens it");
    } else if (!row.Bits) {
        row.Remarks.emplace_back("access bits not read");
    }
    const Key factory = ParseKey("FFFFFFFFFFFF", {});
    const auto isFactory = [&](const std::optional<size_t>& key) {
        return key && keys[*key].Bytes == factory;
    };
    if (isFactory(row.OpenedBy.A) || isFactory(row.OpenedBy.B)) {
        row.Remarks.emplace_back(!isFactory(row.OpenedBy.B)   ? "factory key A"
                                 : !isFactory(row.OpenedBy.A) ? "factory key B"
                                                              : "factory keys A and B");
    }
    if (row.Bits && !isBlocked && AreConditionsFixed(TrailerRightsIn(*row.Bits))) {
        row.Remarks.emplace_back("rights fixed for good");
    }
    if (!row.ValueBlocks.empty()) {
        row.Remarks.push_back("value " + NameOfBlocks(row.ValueBlocks));
    }
    if (!unread.empty() && (row.OpenedBy.A || row.OpenedBy.B)) {
        row.Remarks.push_back(NameOfBlocks(unread) + " not read");
    }
}

Row RowOf(const WholeCard& card, int32_t sector, const KeyRing& keys)
{
    Row row{.Sector = sector, .OpenedBy = card.Openings[static_cast<size_t>(sector)]};
    row.May.fill("?");
    const int32_t last = TrailerBlock(sector);
    const DumpedBlock& trailer = card.Blocks[static_cast<size_t>(last)];
    if ((trailer.Known & AccessBytes) == AccessBytes) {
        row.Bits = Trailer(trailer.Bytes).Conditions;
    }
    if (row.Bits && InvertedCopiesAgree(*row.Bits)) {
        const SectorRights rights = RightsIn(*row.Bits, sector);
        for (unsigned slot = 0; slot < SectorSlots; ++slot) {
            row.May[slot] = LevelWords(rights, slot);
        }
    }
    std::vector<int32_t> unread;
    for (int32_t number = TrailerBlock(sector - 1) + 1; number < last; ++number) {
        const DumpedBlock& block = card.Blocks[static_cast<size_t>(number)];
        if (block.Known != WholeBlock) {
            unread.push_back(number);
        } else if (ValueBlock(block.Bytes).IsValid()) {
            row.ValueBlocks.push_back(number);
        }
    }
    AddRemarks(row, keys, unread);
    return row;
}

std::string LineOf(const Row& row)
{
    constexpr size_t RemarksAt = 54;
    const auto number = [](const std::optional<size_t>& key) {
        return key ? Format("%d", NumberOf(*key)) : "-";
    };
    std::string remarks;
    for (const std::string& remark : row.Remarks) {
        remarks += (remarks.empty() ? "" : "; ") + remark;
    }
    std::string line =
        Format("%6d  %3s  %4s   %-7s%-7s%-7s%-13s", row.Sector, number(row.OpenedBy.A).c_str(),
               row.OpenedBy.ShowsB ? "data" : number(row.OpenedBy.B).c_str(), row.May[0].c_str(),
               row.May[1].c_str(), row.May[2].c_str(), row.May[TrailerSlot].c_str()) +
        Wrap(remarks, RemarksAt);
    return line.erase(line.find_last_not_of(' ') + 1);
}

JsonObject ToJson(const Row& row)
{
    const auto number = [](const std::optional<size_t>& key) {
        return key ? JsonObject(NumberOf(*key)) : JsonObject();
    };
    return {{"sector", row.Sector},
            {"keyA", number(row.OpenedBy.A)},
            {"keyB", number(row.OpenedBy.B)},
            {"keyBIsData", row.OpenedBy.ShowsB},
            {"accessBits", row.Bits ? JsonObject(ToHex(*row.Bits)) : JsonObject()},
            {"may", row.May},
            {"valueBlocks", row.ValueBlocks},
            {"remarks", row.Remarks}};
}

/// What the numbers in the table stand for, and the keys that open nothing.
void ShowKeys(const std::vector<Opening>& openings, const KeyRing& keys, Output& out)
{
    std::set<size_t> used;
    for (const Opening& opening : openings) {
        for (const std::optional<size_t>& key : {opening.A, opening.B}) {
            if (key) {
                used.insert(*key);
            }
        }
    }
    std::vector<int32_t> idle;
    for (size_t at = 0; at < keys.size(); ++at) {
        const auto same = std::ranges::find(keys, keys[at].Bytes, &NamedKey::Bytes) - keys.begin();
        const auto first = static_cast<size_t>(same);
        const bool isUsed = used.contains(first);
        const std::string name =
            keys[at].Name + (first != at ? Format(": the same as key %d", NumberOf(first)) : "");
        out.Json["keys"].push_back({{"number", NumberOf(at)}, {"name", name}, {"isUsed", isUsed}});
        if (isUsed) {
            out.Print(Format("%6d  ", NumberOf(at)) + Wrap(name, /*indent=*/8));
        } else {
            idle.push_back(NumberOf(at));
        }
    }
    if (!idle.empty()) {
        out.Print(Wrap("Unused: " + std::string(idle.size() == 1 ? "key " : "keys ") + Ranges(idle),
                       /*indent=*/0));
    }
}

int ShowCard(const Options& options, Context& context)
{
    Output& out = context.Out;
    KeyRing keys = ReadKeyRing(options.Key);
    const WholeCard card = TakeCard(options.From, ParseCardSize(options.Card), keys, context);
    const std::string serial = card.SerialNumber.empty() ? "-" : card.SerialNumber;
    out.Print(Format("Card %s, %s, since %s\n\n%17s   %s\n%6s  %3s  %4s   %-7s%-7s%-7s%-13s%s",
                     serial.c_str(), card.Size.Name(), card.Size.Reason.c_str(), "opened by",
                     "key A may / key B may", "sector", "A", "B", "data 0", "data 1", "data 2", "trailer",
                     "remarks"));
    out.Json["card"] = card.SerialNumber.empty() ? JsonObject() : JsonObject(serial);
    out.Json["size"] = card.Size.JsonName();
    out.Json["sizeReason"] = card.Size.Reason;
    for (int32_t sector = 0; sector <= card.Size.LastSector; ++sector) {
        const Row row = RowOf(card, sector, keys);
        out.Print(LineOf(row));
        out.Json["sectors"].push_back(ToJson(row));
    }
    constexpr int32_t FirstLargeSector = 32;
    out.Print(card.Size.LastSector >= FirstLargeSector
                  ? "From sector 32 on, data 0, 1 and 2 are five blocks each.\n\nKeys:"
                  : "\nKeys:");
    ShowKeys(card.Openings, keys, out);
    return Done;
}

} // namespace

void AddCard(CommandLine& commands)
{
    auto [command, options] = commands.Add(
        "card", "Shows the whole card in a table: which keys open which sector, and their rights",
        "acg card --key-file keys.txt", ShowCard);
    AddKeyRingOptions(command, options.Key);
    AddCardOption(command, options.Card);
    AddFromOption(command, options.From, {"--card"});
}

} // namespace acg::tool
