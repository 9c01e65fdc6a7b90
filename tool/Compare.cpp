// acg compare: the differences of two dumps, or of a dump and the card in the field.
#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/CommandLine.h"
#include "tool/DumpFile.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WholeCard.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

struct Options {
    std::string First;
    std::string Second; ///< empty for the card in the field
    KeyOptions Key;
    std::string Card; ///< --card
};

struct Named {
    std::string Name;
    Dump Blocks;
};

/// The second file, or the card.
Named TakeSecond(const Options& options, Context& context)
{
    if (!options.Second.empty()) {
        if (!options.Key.Text.empty() || !options.Key.File.empty() || !options.Card.empty()) {
            throw UsageError{
                "--key, --key-file and --card are for the card; two files are compared without it"};
        }
        return {MaskKeys(options.Second), ReadDump(options.Second)};
    }
    KeyRing keys = ReadKeyRing(options.Key);
    WholeCard card = TakeCard(/*from=*/{}, ParseCardSize(options.Card), keys, context);
    SayWhatIsMissing(card, context.Out);
    return {"card " + card.SerialNumber, std::move(card.Blocks)};
}

/// Keys are compared, but not shown. What isn't known of both counts as alike, access bits as a whole.
void ShowTrailer(int32_t number, const DumpedBlock& one, const DumpedBlock& other, Output& out)
{
    constexpr Block Factory = {0, 0, 0, 0, 0, 0, 0xFF, 0x07, 0x80};
    unsigned known = one.Known & other.Known;
    if ((known & AccessBytes) != AccessBytes) {
        known &= ~unsigned{AccessBytes};
    }
    Block first = one.Bytes;
    Block second = other.Bytes;
    for (size_t at = 0; at < first.size(); ++at) {
        if ((known >> at & 1) == 0) {
            first[at] = second[at] = Factory[at];
        }
    }
    std::vector<TrailerDifference> differences =
        TrailerDifferences(Trailer(first), Trailer(second), SectorOf(number));
    if (one.Known != other.Known) {
        differences.push_back({' ', "not all of it is known in both"});
    }
    out.Print(Format("block %d, the trailer of sector %d:", number, SectorOf(number)));
    JsonObject lines = JsonObject::array();
    for (const auto& [mark, text] : differences) {
        out.Print(Format("%c    %s", mark, text.c_str()));
        lines.push_back(
            {{"file", mark == ' ' ? JsonObject() : JsonObject(mark == '<' ? 1 : 2)}, {"text", text}});
    }
    out.Json["blocks"].push_back({{"block", number}, {"differences", lines}});
}

int Compare(const Options& options, Context& context)
{
    Output& out = context.Out;
    const Dump one = ReadDump(options.First);
    const auto [otherName, other] = TakeSecond(options, context);
    const std::string names[] = {MaskKeys(options.First), otherName};
    out.Print(Format("< %s\n> %s", names[0].c_str(), names[1].c_str()));
    out.Json["files"] = names;
    const int32_t sizes[] = {static_cast<int32_t>(one.size()), static_cast<int32_t>(other.size())};
    const int32_t common = std::min(sizes[0], sizes[1]);
    int differences = 0;
    out.Json["blocks"] = JsonObject::array();
    for (int32_t number = 0; number < common; ++number) {
        const DumpedBlock& first = one[static_cast<size_t>(number)];
        const DumpedBlock& second = other[static_cast<size_t>(number)];
        if (first == second) {
            continue;
        }
        ++differences;
        if (IsTrailer(number)) {
            ShowTrailer(number, first, second, out);
            continue;
        }
        out.Print("< " + HexDump(number, first.Bytes, first.Known));
        out.Print("> " + HexDump(number, second.Bytes, second.Known));
        out.Json["blocks"].push_back(
            {{"block", number},
             {"hex", {Digits(first.Bytes, first.Known, ""), Digits(second.Bytes, second.Known, "")}}});
    }
    if (sizes[0] != sizes[1]) {
        const size_t larger = sizes[0] > sizes[1] ? 0 : 1;
        out.Print(Format("blocks %d to %d are only in %s", common, sizes[larger] - 1, names[larger].c_str()));
    }
    out.Print(Format("%d of %d blocks differ", differences, common));
    out.Json["sizes"] = sizes;
    return differences == 0 && sizes[0] == sizes[1] ? Done : Failed;
}

} // namespace

void AddCompare(CommandLine& commands)
{
    auto [command, options] = commands.Add(
        "compare", "Shows where two dumps differ, or a dump and the card; exit status 1 if they do",
        "acg compare before.bin after.txt", Compare);
    command.Argument("FILE1", options.First, "A dump, raw bytes or text; its lines begin with \"<\"");
    command.Argument("FILE2", options.Second,
                     "Another; its lines begin with \">\". Without it: the card in the field",
                     Need::Optional);
    AddKeyRingOptions(command, options.Key);
    AddCardOption(command, options.Card);
}

} // namespace acg::tool
