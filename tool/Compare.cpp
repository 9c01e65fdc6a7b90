// acg compare: the differences of two dumps, or of a dump and the card in the field.
#include "tool/CommandLine.h"
#include "tool/DumpDifference.h"
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
                "--key, --key-file and --card apply to the card; two files are compared without it"};
        }
        return {MaskKeys(options.Second), ReadDump(options.Second)};
    }
    KeyRing keys = ReadKeyRing(options.Key);
    WholeCard card = TakeCard(/*from=*/{}, ParseCardSize(options.Card), keys, context);
    SayWhatIsMissing(card, context.Out);
    return {"card " + card.SerialNumber, std::move(card.Blocks)};
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
        if (first != second) {
            ++differences;
            ShowDifference(number, first, second, out);
        }
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
    auto [command, options] =
        commands.Add("compare", "Shows the differences of two dumps, or of a dump and the card",
                     "acg compare before.bin after.txt", Compare);
    command.Argument("FILE1", options.First, "A dump, raw bytes or text; its lines begin with \"<\"");
    command.Argument("FILE2", options.Second,
                     "Another one; its lines begin with \">\". Default: the card in the field",
                     Need::Optional);
    AddKeyRingOptions(command, options.Key);
    AddCardOption(command, options.Card);
}

} // namespace acg::tool
