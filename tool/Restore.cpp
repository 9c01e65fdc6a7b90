// acg restore: the blocks of a dump back onto a card.
#include "acg/cards/BlockAddress.h"
#include "acg/platform/HexText.h"
#include "tool/Agreement.h"
#include "tool/Blocks.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"
#include "tool/WritePlan.h"
#include "tool/WriteReport.h"

#include <algorithm>
#include <span>
#include <tuple>

namespace acg::tool
{

namespace
{

struct Options {
    std::string File;
    std::string Sectors;
    KeyOptions Key;
    bool HasTrailers = false; ///< --trailers
    bool IsOtherCard = false; ///< --other-card
    bool IsForGood = false;   ///< --for-good
    bool IsDryRun = false;    ///< --dry-run
    bool IsAgreedTo = false;  ///< --yes
};

struct Request {
    Dump Wanted;
    int32_t First; ///< the first sector
    int32_t Last;
    KeyRing Keys;
};

const DumpedBlock& WantedTrailer(const Dump& dump, int32_t sector)
{
    return dump[static_cast<size_t>(TrailerBlock(sector))];
}

Request Parse(const Options& options, const Output& out)
{
    Request request{.Wanted = ReadDump(options.File), .First = 0, .Keys = ReadKeyRing(options.Key)};
    const auto blocks = static_cast<int32_t>(request.Wanted.size());
    if (blocks != TrailerBlock(LastSector1K) + 1 && blocks != LastBlock + 1) {
        throw UsageError{Format("%s has %d blocks; the dump of a card has 64, or 256 if it is a 4K card",
                                options.File.c_str(), blocks)};
    }
    request.Last = SectorOf(blocks - 1);
    if (!options.Sectors.empty()) {
        const int32_t lastOfDump = request.Last;
        std::tie(request.First, request.Last) = ParseRange(options.Sectors, ParseSector);
        if (request.Last > lastOfDump) {
            throw UsageError{Format("the dump ends with sector %d; acg restore DUMP 1-%d, for example",
                                    lastOfDump, lastOfDump)};
        }
    }
    for (int32_t sector = request.First; options.HasTrailers && sector <= request.Last; ++sector) {
        if (IsContradictory(WantedTrailer(request.Wanted, sector))) {
            throw UsageError{Format("the access bits that %s has for sector %d contradict themselves: with "
                                    "them, the card would block the sector for good",
                                    options.File.c_str(), sector)};
        }
    }
    if (!options.IsDryRun && !options.IsAgreedTo) {
        RequireSomebodyToAsk(out);
    }
    return request;
}

void AddKeys(const DumpedBlock& trailer, KeyRing& keys)
{
    for (const std::optional<Key>& key : {KeyAIn(trailer), KeyBIn(trailer)}) {
        if (key && std::ranges::find(keys, *key, &NamedKey::Bytes) == keys.end()) {
            keys.push_back({*key, "a key of the dump"});
        }
    }
}

void RequireSameCard(CardSession& card, const Request& request, const Options& options)
{
    constexpr size_t SerialSize = 4;
    constexpr uint16_t SerialBits = BitsOf(0, SerialSize);
    const DumpedBlock& block = request.Wanted.front();
    const std::string ofDump = ToHex(std::span(block.Bytes).first(SerialSize));
    if ((block.Known & SerialBits) == SerialBits && !card.SerialNumber().starts_with(ofDump) &&
        !options.IsOtherCard) {
        throw UsageError{Format("the dump is of card %s, and card %s is in the field; --other-card "
                                "allows it",
                                ofDump.c_str(), card.SerialNumber().c_str())};
    }
}

/// If sectors are wanted that a card of 1K lacks.
void RequireSize(CardSession& card, const Request& request)
{
    if (request.Last <= LastSector1K) {
        return;
    }
    KeyRing keys;
    for (int32_t sector = LastSector1K + 1; sector <= LastSector; ++sector) {
        AddKeys(WantedTrailer(request.Wanted, sector), keys);
    }
    keys.insert(keys.end(), request.Keys.begin(), request.Keys.end());
    const std::optional<CardSize> size = FindSize(card, keys, LastSector);
    if (!size || size->LastSector == LastSector1K) {
        throw OtherFailure{
            Format("the card is assumed to be 1K, since %s; sectors up to 15 can be restored: acg "
                   "restore DUMP 0-15",
                   size ? size->Reason.c_str() : "no key opens a sector from 16 on")};
    }
}

WritePlan MakePlan(CardSession& card, const Request& request, Asked asked)
{
    WritePlan plan(request.Wanted, asked);
    const ProgressBar bar(TrailerBlock(request.Last) + 1);
    for (int32_t sector = request.First; sector <= request.Last; ++sector) {
        KeyRing keys;
        // These fit if the card has been restored already.
        AddKeys(WantedTrailer(request.Wanted, sector), keys);
        keys.insert(keys.end(), request.Keys.begin(), request.Keys.end());
        plan.Add(sector, ReadSector(card, sector, keys, bar), keys);
    }
    card.Select(); // all of it was read of one card
    return plan;
}

/// A command that shows what the card lacks, for a person to type.
std::string LookCommand(const Options& options)
{
    const std::string& keys = options.Key.File;
    return "acg restore " + MaskKeys(options.File) + (options.Sectors.empty() ? "" : ' ' + options.Sectors) +
           (options.HasTrailers ? " --trailers" : "") + (options.IsOtherCard ? " --other-card" : "") +
           (!keys.empty()               ? " --key-file " + MaskKeys(keys)
            : !options.Key.Text.empty() ? " --key KEY"
                                        : "") +
           " --dry-run";
}

int Restore(const Options& options, Context& context)
{
    Output& out = context.Out;
    const Request request = Parse(options, out);
    const std::string look = LookCommand(options);
    WriteReport before(out); // until it is known what differs
    before.Add(Format("sectors %d to %d", request.First, request.Last), look);
    CardSession card(context.Reader);
    before.BeginCard(card);
    RequireSameCard(card, request, options);
    RequireSize(card, request);
    const WritePlan plan = MakePlan(card, request, options.HasTrailers ? Asked::All : Asked::Data);
    plan.Show(out);
    const int status = plan.LeavesOut() ? Failed : Done;
    const std::vector<WriteStep> steps = plan.Steps();
    if (steps.empty()) {
        out.Print(plan.LeavesOut() ? "Nothing can be written." : "There is nothing to write.");
        return status;
    }
    WriteReport report(out);
    for (const WriteStep& step : steps) {
        report.Add(step.Name(), look);
    }
    if (!plan.Frozen().empty() && !options.IsForGood) {
        throw UsageError{
            Format("this freezes sector %d for good; --for-good allows it", plan.Frozen().front())};
    }
    if (options.IsDryRun) {
        out.Print("Nothing was written: --dry-run.");
        return status;
    }
    if (!options.IsAgreedTo && !IsAgreedTo()) {
        throw OtherFailure{"not agreed to"};
    }
    card.Select();
    for (const WriteStep& step : steps) {
        WriteBlocks(card, step, request.Wanted, report);
    }
    out.Print("Written, and read back.");
    return status;
}

} // namespace

void AddRestore(CommandLine& commands)
{
    auto [command, options] =
        commands.Add("restore", "Writes a dump back: the blocks of the card that differ from it",
                     "acg restore card.txt 1-15 --key-file keys.txt --dry-run", Restore);
    command.Argument("DUMP", options.File,
                     "A dump, raw bytes or text. Its keys are tried first; block 0 is never written");
    command.Argument("SECTORS", options.Sectors, "A sector, or the first and the last one; default: all",
                     Need::Optional);
    AddKeyRingOptions(command, options.Key);
    command.Flag("--trailers", options.HasTrailers,
                 "Write the trailers too, with the dump's keys and rights");
    command.Flag("--other-card", options.IsOtherCard, "Allow a card with another serial number");
    command.Flag("--dry-run", options.IsDryRun, "Show what would be written, and write nothing");
    command.Flag("--yes", options.IsAgreedTo, "Don't ask for confirmation");
    command.Flag("--for-good", options.IsForGood, "Allow changes that can never be undone");
}

} // namespace acg::tool
