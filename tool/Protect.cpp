// acg protect: new keys and levels for sectors, with all that can't be undone said before it is done.
#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Agreement.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/SectorPlan.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

#include <algorithm>
#include <span>

namespace acg::tool
{

namespace
{

struct Options {
    std::string Sectors;
    KeyOptions Key;
    LevelOptions Levels;
    std::string NewA;        ///< --new-a
    std::string NewB;        ///< --new-b
    std::string NewKeysFile; ///< --new-keys
    std::string BX;          ///< --bx
    bool IsFactory = false;  ///< --factory
    bool Erases = false;     ///< --erase
    bool IsForGood = false;  ///< --for-good
    bool IsDryRun = false;   ///< --dry-run
    bool IsAgreedTo = false; ///< --yes
};

std::vector<Key> ParseNewKeys(const Options& options)
{
    if (!options.NewKeysFile.empty()) {
        const KeyRing keys = ReadKeys(options.NewKeysFile);
        if (keys.size() != 2) {
            throw UsageError{options.NewKeysFile + " must have two keys: A, then B"};
        }
        return {keys.front().Bytes, keys.back().Bytes};
    }
    const auto keyA = KeyFromOption(options.NewA, "--new-a", "ACG_NEW_A");
    const auto keyB = KeyFromOption(options.NewB, "--new-b", "ACG_NEW_B");
    if (keyA.has_value() != keyB.has_value()) {
        throw UsageError{keyA ? "there is a new key A, but no new key B: --new-b, or the variable ACG_NEW_B"
                              : "there is a new key B, but no new key A: --new-a, or the variable ACG_NEW_A"};
    }
    return keyA ? std::vector{*keyA, *keyB} : std::vector<Key>();
}

ProtectRequest Parse(const Options& options, int32_t firstSector, const Output& out)
{
    constexpr uint8_t FactoryUserByte = 105;
    ProtectRequest request{
        .Login = ReadLoginKey(options.Key), .IsFactory = options.IsFactory, .Erases = options.Erases};
    if (options.Erases && !options.IsFactory) {
        throw UsageError{
            "--erase goes with --factory, as in acg protect 1-15 --factory --erase --key-file a.txt"};
    }
    if (options.IsFactory) {
        const Key key = ParseKey("FFFFFFFFFFFF", {});
        request.Keys = {key, key};
        request.Levels = {.Levels = {3, 3, 3, 3}, .KeysToUse = KeyAAlone}; // read back as 15,15,15,3
        request.BX = FactoryUserByte;
    } else {
        request.Keys = ParseNewKeys(options);
        request.Levels = ParseLevels(options.Levels);
    }
    if (firstSector == 0 && request.Levels.IsValueBlock[0]) {
        throw UsageError{"block 0 is the manufacturer's and can't be written: --value 0 isn't for sector 0"};
    }
    if (request.Levels.KeysToUse != KeysAsOnCard) {
        static_cast<void>(EncodeOrRefuse(request.Levels));
    }
    if (!options.BX.empty()) {
        request.BX =
            static_cast<uint8_t>(ParseNumber(options.BX, 0, UINT8_MAX, "--bx is a number from 0 to 255"));
    }
    if (!options.IsDryRun && !options.IsAgreedTo) {
        RequireSomebodyToAsk(out);
    }
    return request;
}

/// The class stores the rights of a purse only for a block that it has written as a value block itself.
void WarnOfPurses(const ConditionBytes& before, const ConditionBytes& after, SectorNumber sector, Output& out)
{
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (TripleIn(before, slot) == AccessTriple::Bits110 &&
            TripleIn(after, slot) == AccessTriple::Bits100) {
            out.Print(Format("Taken away: a value in %s can no longer be incremented or decremented; "
                             "--value %u keeps that.",
                             NameOfSlot(slot, sector).c_str(), slot));
        }
    }
}

using Plans = std::vector<SectorPlan>;

/// "sector 4", or "sectors 1-3, 5", of those plans for which it is true.
template <class Predicate>
std::string SectorsOf(const Plans& plans, Predicate isMeant)
{
    std::string text;
    int count = 0;
    for (size_t at = 0; at < plans.size(); ++at) {
        if (!isMeant(plans[at])) {
            continue;
        }
        const size_t from = at;
        while (at + 1 < plans.size() && isMeant(plans[at + 1])) {
            ++at;
        }
        count += static_cast<int>(at - from) + 1;
        text += (text.empty() ? "" : ", ") + std::to_string(plans[from].Sector) +
                (at > from ? "-" + std::to_string(plans[at].Sector) : "");
    }
    return count == 0 ? "" : (count == 1 ? "sector " : "sectors ") + text;
}

bool IsLarge(int32_t sector)
{
    return TrailerBlock(sector) - TrailerBlock(sector - 1) > int32_t{SectorSlots};
}

/// The same tables hold for both.
bool LookAlike(const SectorPlan& one, const SectorPlan& other)
{
    return one.Before == other.Before && one.UserByteBefore == other.UserByteBefore &&
           one.Bytes == other.Bytes && one.BX == other.BX && IsLarge(one.Sector) == IsLarge(other.Sector) &&
           (one.Sector == 0) == (other.Sector == 0) && one.IsDone == other.IsDone;
}

/// Sectors that look alike share their tables, in which the data blocks are then counted from 0.
void ShowChange(const Plans& plans, const SectorPlan& plan, Output& out)
{
    const auto isMeant = [&](const SectorPlan& other) { return LookAlike(plan, other); };
    const bool isAlone = std::ranges::count_if(plans, isMeant) == 1;
    const SectorNumber sector = isAlone ? SectorNumber(plan.Sector) : std::nullopt;
    const AccessReport before{sector, plan.Before, plan.UserByteBefore, {}};
    const AccessReport after{sector, plan.Bytes, plan.BX, Deviations(plan.Levels, plan.Bytes, sector)};
    std::string title = SectorsOf(plans, isMeant);
    title.front() = 'S';
    out.Print(AccessHead(title + " now", before) +
              (!isAlone && IsLarge(plan.Sector) ? "\nA data block stands for five here." : "") + "\n\n" +
              AccessTable(before) + '\n');
    out.Print(AccessHead(title + " afterwards", after) + "\n\n" + AccessTable(after));
    WarnOfPurses(before.Bytes, after.Bytes, sector, out);
}

void ShowChanges(const Plans& plans, Output& out)
{
    for (auto plan = plans.begin(); plan != plans.end(); ++plan) {
        const int32_t sector = plan->Sector;
        JsonObject json;
        json["before"] = ToJson({sector, plan->Before, plan->UserByteBefore, {}});
        json["after"] =
            ToJson({sector, plan->Bytes, plan->BX, Deviations(plan->Levels, plan->Bytes, sector)});
        if (plans.size() == 1) {
            out.Json.update(json);
        } else {
            out.Json["sectors"].push_back(json);
        }
        const auto isLike = [&](const SectorPlan& other) { return LookAlike(*plan, other); };
        if (!plan->IsDone && std::none_of(plans.begin(), plan, isLike)) {
            if (plan != plans.begin()) {
                out.Print("");
            }
            ShowChange(plans, *plan, out);
        }
    }
    const std::string done = SectorsOf(plans, [](const SectorPlan& plan) { return plan.IsDone; });
    if (!done.empty()) {
        out.Print("Unchanged, with these keys and levels already: " + done + '.');
    }
}

void ShowErasures(const Plans& plans, Output& out)
{
    const auto show = [&](Erasure when, const char* how) {
        const std::string sectors =
            SectorsOf(plans, [&](const SectorPlan& plan) { return plan.Erase == when; });
        if (!sectors.empty()) {
            out.Print(Wrap("The data blocks of " + sectors + " are filled with zeros, " + how, 0));
        }
    };
    show(Erasure::First, "before the trailer is written.");
    show(Erasure::Afterwards,
         "with the new key A after the trailer is written, as the key of this login may not write "
         "all of them.");
}

/// In a range, says which sector it was.
template <class Step>
void ForEach(Plans& plans, Output& out, Step step)
{
    for (SectorPlan& plan : plans) {
        try {
            step(plan);
        } catch (const Interruption&) {
            throw;
        } catch (...) {
            if (plans.size() > 1) {
                out.Problem(Format("sector %d:", plan.Sector));
            }
            throw;
        }
    }
}

int Protect(const Options& options, Context& context)
{
    Output& out = context.Out;
    const auto [first, last] = ParseRange(options.Sectors, ParseSector);
    const ProtectRequest request = Parse(options, first, out);
    Plans plans;
    for (int32_t sector = first; sector <= last; ++sector) {
        plans.push_back({.Sector = sector, .Erase = request.Erases ? Erasure::First : Erasure::None});
    }
    const bool isAlone = plans.size() == 1;
    WriteReport report(out);
    const auto addParts = [&] {
        report.Clear();
        for (const SectorPlan& plan : plans) {
            AddParts(request, plan, isAlone, report);
        }
    };
    addParts();
    CardSession card(context.Reader);
    report.BeginCard(card);
    ForEach(plans, out, [&](SectorPlan& plan) { plan = PlanSector(card, request, plan.Sector); });
    ShowChanges(plans, out);
    ForEach(plans, out, [&](SectorPlan& plan) { CompletePlan(card, request, plan, out); });
    addParts();

    if (request.Keys.empty()) {
        out.Print(Format("The keys stay as they are, since %s may not write them.",
                         NameOf(request.Login.AsKeySet())));
        if (std::ranges::any_of(plans, [](const SectorPlan& plan) { return !plan.IsKeyB(); })) {
            out.Print("Key B opens nothing afterwards, so this can't be read back with it.");
            if (!isAlone) {
                throw UsageError{
                    "what can't be read back is written one sector at a time, as in acg protect 1"};
            }
        }
    }
    ShowErasures(plans, out);
    const std::string frozen = SectorsOf(plans, [](const SectorPlan& plan) {
        return !plan.IsDone && AreConditionsFixed(TrailerRightsIn(plan.Bytes)) &&
               !AreConditionsFixed(TrailerRightsIn(plan.Before));
    });
    if (!frozen.empty() && !options.IsForGood) {
        throw UsageError{"this freezes " + (isAlone ? "the sector" : frozen) +
                         " for good; --for-good allows it"};
    }
    if (options.IsDryRun) {
        out.Print("Nothing was written: --dry-run.");
        return Done;
    }
    const auto isToWrite = [](const SectorPlan& plan) { return !plan.IsDone || plan.Erase != Erasure::None; };
    const auto sectors = static_cast<size_t>(std::ranges::count_if(plans, isToWrite));
    if (sectors == 0) {
        out.Print("Nothing is left to write.");
        return Done;
    }
    if (!options.IsAgreedTo &&
        !IsAgreedTo(sectors == 1 ? "this" : Format("these %d sectors", static_cast<int>(sectors)))) {
        throw OtherFailure{"not agreed to"};
    }
    card.Select();
    ForEach(plans, out, [&](const SectorPlan& plan) {
        if (isToWrite(plan)) {
            WriteSector(card, request, plan, report);
            out.Print((isAlone ? "W" : Format("Sector %d: w", plan.Sector)) +
                      (request.Keys.empty() ? "ritten, and read back."
                                            : "ritten, and read back with the new keys."));
        }
    });
    return Done;
}

} // namespace

void AddProtect(CommandLine& commands)
{
    auto [command, options] = commands.Add(
        "protect", "Writes new keys and levels to sectors, after showing their effect",
        "acg protect 1 --key-file a.txt --new-keys b.txt --levels 13,13,13,12 --keys 2", Protect);
    AddSectorArgument(command, options.Sectors);
    AddLoginOptions(command, options.Key);
    AddLevelOptions(command, options.Levels, "1 for key A alone, 2 for both keys; default: keep the card's",
                    "Which of the sector's data blocks 0, 1 and 2 are value blocks, as in 0,2: each is "
                    "written again with its value, and "
                    "levels 9 and 13 grant the rights of a purse");
    command.Option(
        "--new-a", "KEY", options.NewA,
        "The new key A; default: the variable ACG_NEW_A. New keys are required unless the key that "
        "logs in may not write them");
    command.Option("--new-b", "KEY", options.NewB, "The new key B; default: the variable ACG_NEW_B");
    command.Option("--new-keys", "FILE", options.NewKeysFile, "A file with the new key A, then the new key B",
                   Need::Optional, {"--new-a", "--new-b"});
    command.Option("--bx", "N", options.BX, "Byte 9 of the trailer, 0 to 255; default: keep the card's");
    command.Flag(
        "--factory", options.IsFactory,
        "Instead of keys and levels: as delivered, keys FFFFFFFFFFFF, levels 15,15,15,3 with key A alone, "
        "byte 9 105",
        {"--levels", "--keys", "--value", "--new-a", "--new-b", "--new-keys", "--bx"});
    command.Flag("--erase", options.Erases,
                 "With --factory: fill the data blocks, except block 0, with zeros");
    command.Flag("--dry-run", options.IsDryRun, "Show what would be written, and write nothing");
    command.Flag("--yes", options.IsAgreedTo, "Don't ask for confirmation");
    command.Flag("--for-good", options.IsForGood, "Allow changes that can never be undone");
}

} // namespace acg::tool
