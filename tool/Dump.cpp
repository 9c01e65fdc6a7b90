// acg dump: the whole card into a file.
#include "tool/Blocks.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WholeCard.h"
#include "tool/WriteReport.h"

#include <algorithm>
#include <optional>

namespace acg::tool
{

namespace
{

struct Options {
    std::string File;
    KeyOptions Key;
    std::string Card;        ///< --card
    bool MayReplace = false; ///< --force
};

/// What a key of the list is called.
std::string NameOf(const std::optional<size_t>& key, const KeyRing& keys)
{
    return key ? keys[*key].Name : "unknown";
}

/// A line for each run of sectors with the same keys.
void ShowOpenings(const std::vector<Opening>& openings, const KeyRing& keys, Output& out)
{
    for (auto from = openings.begin(); from != openings.end();) {
        const auto end =
            std::find_if(from, openings.end(), [&](const Opening& other) { return other != *from; });
        const auto first = static_cast<int>(from - openings.begin());
        const auto last = static_cast<int>(end - openings.begin()) - 1;
        const std::string keyA = NameOf(from->A, keys);
        const std::string keyB = from->ShowsB ? "shown by the card" : NameOf(from->B, keys);
        out.Print(Format("sectors %2d to %2d  key A %s, key B %s", first, last, keyA.c_str(), keyB.c_str()));
        out.Json["sectors"].push_back({{"first", first}, {"last", last}, {"keyA", keyA}, {"keyB", keyB}});
        from = end;
    }
}

/// Of a trailer, what it shows.
bool IsRead(const DumpedBlock& block, int32_t number)
{
    const uint16_t shown = IsTrailer(number) ? AllButKeys : WholeBlock;
    return (block.Known & shown) == shown;
}

bool AreAllRead(const Dump& card)
{
    int32_t number = 0;
    return std::ranges::all_of(card, [&](const DumpedBlock& block) { return IsRead(block, number++); });
}

int DumpCard(const Options& options, Context& context)
{
    Output& out = context.Out;
    const std::string& name = options.File;
    const KeyRing keys = ReadKeyRing(options.Key);
    const std::optional<CardSize> size = ParseCardSize(options.Card);
    const ExistingFile existing = options.MayReplace ? ExistingFile::Replaced : ExistingFile::Kept;
    RequireWritable(name, existing);
    WriteReport report(out);
    report.Add(MaskKeys(name), /*look=*/{});
    CardSession session(context.Reader);
    report.BeginCard(session);
    const WholeCard card = ReadWholeCard(session, keys, size, out);
    SayWhatIsMissing(card, out);
    if (!IsTextDump(name) && !AreAllRead(card.Blocks)) {
        throw OtherFailure{
            "a file of raw bytes can't say which blocks weren't read; a file whose name ends in "
            ".txt can: acg dump card.txt"};
    }
    WriteDump(name, card.Blocks, existing);
    report.ConfirmFile();
    ShowOpenings(card.Openings, keys, out);
    int blocks = 0;
    int read = 0;
    for (const DumpedBlock& block : card.Blocks) {
        read += IsRead(block, blocks++) ? 1 : 0;
    }
    out.Print(Format("card %s, assumed to be %s, since %s\n%d of %d blocks read; the file is %s",
                     card.SerialNumber.c_str(), card.Size.Name(), card.Size.Reason.c_str(), read, blocks,
                     MaskKeys(name).c_str()));
    out.Json["size"] = card.Size.JsonName();
    out.Json["sizeReason"] = card.Size.Reason;
    out.Json["blocks"] = blocks;
    out.Json["blocksRead"] = read;
    return card.Missing.empty() ? Done : Failed;
}

} // namespace

void AddDump(CommandLine& commands)
{
    auto [command, options] = commands.Add("dump", "Reads the whole card into a file",
                                           "acg dump card.txt --key-file keys.txt", DumpCard);
    command.Argument("FILE", options.File,
                     "The file: raw bytes, or 32 digits a line if its name ends in .txt. A key that the card "
                     "doesn't show is filled in from the one that opened the sector");
    AddKeyRingOptions(command, options.Key);
    AddCardOption(command, options.Card);
    command.Flag("--force", options.MayReplace, "Replace FILE if it exists");
}

} // namespace acg::tool
