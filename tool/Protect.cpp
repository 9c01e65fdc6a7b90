// acg protect: new keys and levels for a sector, with all that can't be undone said before it is done.
#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/SectorTrailer.h"
#include "tool/System.h"
#include "tool/Text.h"
#include "tool/WriteReport.h"

#include <algorithm>
#include <cstdio>

namespace acg::tool
{

namespace
{

struct Options {
    std::string Sector;
    KeyOptions Key;
    LevelOptions Levels;
    std::string NewA;        ///< --new-a
    std::string NewB;        ///< --new-b
    std::string NewKeysFile; ///< --new-keys
    std::string BX;          ///< --bx
    bool IsForGood = false;  ///< --for-good
    bool IsDryRun = false;   ///< --dry-run
    bool IsAgreedTo = false; ///< --yes
};

struct Request {
    int32_t Sector;
    LoginKey Login;
    std::vector<Key> Keys; ///< the new keys A and B; empty: they stay as they are
    // KeysToUse is KeysAsOnCard, and BX none, if they aren't given, until Complete.
    SectorLevels Levels;
    std::optional<uint8_t> BX;
    ConditionBytes Bytes{}; ///< the access bits of the levels; set by Complete
};

/// A value block that is written again before the trailer, so that the class stores the rights of a purse.
struct Purse {
    int32_t Block;
    int32_t Value;
};

std::vector<Key> ParseNewKeys(const Options& options)
{
    if (!options.NewKeysFile.empty()) {
        const KeyRing keys = ReadKeys(options.NewKeysFile);
        if (keys.size() != 2) {
            throw UsageError{options.NewKeysFile + " has to have two keys: A, then B"};
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

Request Parse(const Options& options, bool canAsk)
{
    Request request{.Sector = ParseSector(options.Sector),
                    .Login = ReadLoginKey(options.Key),
                    .Keys = ParseNewKeys(options),
                    .Levels = ParseLevels(options.Levels)};
    if (request.Sector == 0 && request.Levels.IsValueBlock[0]) {
        throw UsageError{"block 0 is the manufacturer's and can't be written: --value 0 isn't for sector 0"};
    }
    if (request.Levels.KeysToUse != KeysAsOnCard) {
        static_cast<void>(EncodeOrRefuse(request.Levels));
    }
    if (!options.BX.empty()) {
        request.BX =
            static_cast<uint8_t>(ParseNumber(options.BX, 0, UINT8_MAX, "--bx is a number from 0 to 255"));
    }
    if (!options.IsDryRun && !options.IsAgreedTo && !canAsk) {
        throw UsageError{"there is nobody to ask: give --yes to write, or --dry-run to look"};
    }
    return request;
}

/// The class stores a purse's rights for a slot by these blocks, also in a sector of 16 blocks.
int32_t PurseBlock(const Request& request, unsigned slot)
{
    return TrailerBlock(request.Sector) - static_cast<int32_t>(DataSlots - slot);
}

/// The slot whose access bits hold for that block.
unsigned SlotOfPurse(const Request& request, unsigned slot)
{
    const bool isLarge =
        TrailerBlock(request.Sector) - TrailerBlock(request.Sector - 1) > int32_t{SectorSlots};
    return isLarge ? DataSlots - 1 : slot;
}

void AddParts(const Request& request, WriteReport& report)
{
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (request.Levels.IsValueBlock[slot]) {
            const int32_t block = PurseBlock(request, slot);
            report.Add(Format("block %d", block), ReadCommand(block, request.Login));
        }
    }
    const char* with = request.Login.Option();
    if (!request.Keys.empty()) {
        with = request.Login.IsB() ? ", with the new key A, or if that fails with the old key and --as-b"
                                   : ", with the new key A, or if that fails with the old key";
    } else if (request.Levels.KeysToUse == KeyAAlone) {
        with = ", with key A";
    }
    const std::string look = Format("acg trailer %d --key KEY%s", request.Sector, with);
    report.Add(Format(request.Keys.empty() ? "the access bits of sector %d"
                                           : "the keys and the access bits of sector %d",
                      request.Sector),
               look);
}

/// Takes what isn't given from the card, so that nothing comes from what the class reads on writing.
void Complete(Request& request, const Trailer& onCard)
{
    if (request.Levels.KeysToUse == KeysAsOnCard) {
        request.Levels.KeysToUse = KeysUsedBy(TrailerRightsIn(onCard.Conditions));
    }
    request.BX = request.BX.value_or(onCard.UserByte);
    request.Bytes = EncodeOrRefuse(request.Levels);
}

/// Key B is a key once the trailer is written.
bool IsKeyB(const Request& request)
{
    return KeysUsedBy(TrailerRightsIn(request.Bytes)) == BothKeys;
}

/// The class stores the rights of a purse only for a block that it has written as a value block itself.
void WarnOfPurses(const ConditionBytes& before, const ConditionBytes& after, int32_t sector, Output& out)
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

void ShowChange(const Request& request, const Trailer& onCard, Output& out)
{
    const int32_t sector = request.Sector;
    const AccessReport before{sector, onCard.Conditions, onCard.UserByte, {}};
    const AccessReport after{sector, request.Bytes, request.BX,
                             Deviations(request.Levels, request.Bytes, sector)};
    out.Json["before"] = ToJson(before);
    out.Json["after"] = ToJson(after);
    out.Print(AccessHead(Format("Sector %d now", sector), before) + "\n\n" + AccessTable(before) + '\n');
    out.Print(AccessHead(Format("Sector %d afterwards", sector), after) + "\n\n" + AccessTable(after));
    WarnOfPurses(before.Bytes, after.Bytes, sector, out);
}

/// The class sends a whole trailer, of which the card silently takes what the key may write.
void RequireRights(const Request& request, const TrailerRights& rights, bool changesConditions)
{
    const KeySet key = request.Login.AsKeySet();
    const bool mayWriteKeys = Has(rights.WriteKeys, key);
    const bool mayWriteConditions = Has(rights.WriteConditions, key);
    if (!mayWriteKeys && (!request.Keys.empty() || !mayWriteConditions)) {
        throw OtherFailure{
            Format("%s may not write the keys of this sector%s", NameOf(key),
                   mayWriteConditions ? ": without new keys, the access bits alone are written" : "")};
    }
    if (mayWriteKeys && request.Keys.empty()) {
        throw UsageError{
            Format("%s may write the keys of this sector, so they have to be given, new or as they "
                   "are: --new-a and --new-b, --new-keys, or the variables ACG_NEW_A and ACG_NEW_B",
                   NameOf(key))};
    }
    if (changesConditions && !mayWriteConditions) {
        throw OtherFailure{Format("%s may not write the access bits and byte 9 of this sector", NameOf(key))};
    }
}

Purse ReadPurse(CardSession& card, const Request& request, unsigned slot, const ConditionBytes& before,
                Output& out)
{
    const int32_t number = PurseBlock(request, slot);
    const KeySet writers = RightsOfBits(before)[SlotOfPurse(request, slot)][Right::Write];
    if (!Has(writers, request.Login.AsKeySet())) {
        throw OtherFailure{
            Format("--value %u writes block %d, which %s may write", slot, number, NameOf(writers))};
    }
    const ValueBlock block(card.ReadBlock(number, request.Login));
    if (!block.IsValid()) {
        throw OtherFailure{
            Format("block %d isn't a value block; to make it one: acg value %d NUMBER --key KEY%s", number,
                   number, request.Login.Option())};
    }
    out.Json["values"].push_back({{"block", number}, {"value", block.Value}});
    const std::string others = SlotOfPurse(request, slot) != slot
                                   ? Format(", for %s,", NameOfSlot(slot, request.Sector).c_str())
                                   : "";
    std::string line = Format("Block %d%s is written first, as a value block; its value stays %d", number,
                              others.c_str(), block.Value);
    const int address = block.Address.value_or(0); // it is a value block
    line += address != number ? Format(", its address %d becomes %d", address, number) : "";
    out.Print(line + ".");
    return {number, block.Value};
}

bool IsAgreedTo()
{
    std::fflush(stdout);
    std::fputs("Write this? Type yes: ", stderr);
    char answer[8] = {};
    const bool isAnswered = std::fgets(answer, sizeof answer, stdin) != nullptr;
    if (WasInterrupted()) {
        throw Interruption{};
    }
    return isAnswered && std::string_view(answer) == "yes\n";
}

void Write(CardSession& card, const Purse& purse, const LoginKey& key, WriteReport& report)
{
    Encoder& encoder = card.Class();
    report.NoteSending(card, FailureOf(encoder, encoder.WriteValueBloc(purse.Block, DigitsOf(key.Bytes).Text,
                                                                       key.Type, purse.Value)));
    const bool isTaken = report.ReadBack(card, [&] {
        const ValueBlock block(card.ReadBlock(purse.Block, key));
        return block.HasCopies() && block.Value == purse.Value && block.Address == purse.Block;
    });
    if (!isTaken) {
        throw OtherFailure{Format("block %d reads back as something other than was written", purse.Block)};
    }
}

void Write(CardSession& card, const Request& request, WriteReport& report)
{
    const auto level = [&](size_t slot) {
        return static_cast<SCBS_SecurityLevelEnum>(request.Levels.Levels[slot]);
    };
    // Without new ones the card ignores the keys, by the rights that RequireRights has seen. The key of the
    // login would be the least harm if it took them.
    const Key& keyA = request.Keys.empty() ? request.Login.Bytes : request.Keys.front();
    const Key& keyB = request.Keys.empty() ? request.Login.Bytes : request.Keys.back();
    Encoder& encoder = card.Class();
    report.NoteSending(
        card, FailureOf(encoder, encoder.WriteSectorTrailer(
                                     request.Sector, DigitsOf(request.Login.Bytes).Text, request.Login.Type,
                                     DigitsOf(keyA).Text, DigitsOf(keyB).Text, request.Levels.KeysToUse,
                                     level(0), level(1), level(2),
                                     static_cast<SCSS_SecurityLevelEnum>(request.Levels.Levels[TrailerSlot]),
                                     *request.BX)));
}

/// Logs in with each key that the sector then has, and compares what reads back.
bool IsTaken(CardSession& card, const Request& request)
{
    std::vector<LoginKey> logins = {request.Login};
    if (!request.Keys.empty()) {
        logins = {{request.Keys.front(), KeyTypeA}};
        if (IsKeyB(request)) {
            logins.push_back({request.Keys.back(), KeyTypeB});
        }
    }
    return std::ranges::all_of(logins, [&](const LoginKey& key) {
        const Trailer trailer = ReadTrailer(card, request.Sector, key);
        return trailer.Conditions == request.Bytes && trailer.UserByte == request.BX &&
               (request.Keys.empty() || IsKeyB(request) || trailer.KeyB == request.Keys.back());
    });
}

int Protect(const Options& options, Context& context)
{
    Output& out = context.Out;
    Request request = Parse(options, /*canAsk=*/!out.IsJson && IsTerminal(stdin));
    WriteReport report(out);
    AddParts(request, report);
    CardSession card(context.Parameters);
    report.BeginCard(card);
    const Trailer onCard = ReadTrailer(card, request.Sector, request.Login);
    const ConditionBytes before = onCard.Conditions;
    const TrailerRights& rights = TrailerRightsIn(before);
    Complete(request, onCard);
    ShowChange(request, onCard, out);

    RequireRights(request, rights, before != request.Bytes || onCard.UserByte != request.BX);
    const bool canBeReadBack = !request.Keys.empty() || IsKeyB(request);
    if (request.Keys.empty()) {
        out.Print(Format("The keys stay as they are, since %s may not write them.",
                         NameOf(request.Login.AsKeySet())));
    }
    if (!canBeReadBack) {
        out.Print("Key B opens nothing afterwards, so this can't be read back with it.");
    }
    std::vector<Purse> purses;
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (request.Levels.IsValueBlock[slot]) {
            purses.push_back(ReadPurse(card, request, slot, before, out));
        }
    }
    if (AreConditionsFixed(TrailerRightsIn(request.Bytes)) && !AreConditionsFixed(rights) &&
        !options.IsForGood) {
        throw UsageError{"this freezes the sector for good. Give --for-good if it is meant"};
    }
    if (options.IsDryRun) {
        out.Print("Nothing was written: --dry-run.");
        return Done;
    }
    if (!options.IsAgreedTo && !IsAgreedTo()) {
        throw OtherFailure{"not agreed to"};
    }
    card.Select();
    for (const Purse& purse : purses) {
        Write(card, purse, request.Login, report);
    }
    Write(card, request, report);
    if (!canBeReadBack) {
        throw OtherFailure{"key B opens nothing now, so what was written can't be read back with it"};
    }
    if (!report.ReadBack(card, [&] { return IsTaken(card, request); })) {
        throw OtherFailure{"the card holds something other than was written"};
    }
    out.Print(request.Keys.empty() ? "Written, and read back." : "Written, and read back with the new keys.");
    return Done;
}

} // namespace

void AddProtect(CommandLine& commands)
{
    auto [command, options] = commands.Add(
        "protect", "Writes new keys and levels for a sector, and says first what that means",
        "acg protect 1 --key-file a.txt --new-keys b.txt --levels 13,13,13,12 --keys 2", Protect);
    AddSectorArgument(command, options.Sector);
    AddLoginOptions(command, options.Key);
    AddLevelOptions(command, options.Levels, "1 for key A alone, 2 for both keys; default: as on the card",
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
    command.Option("--bx", "N", options.BX, "Byte 9 of the trailer, 0 to 255; default: as on the card");
    command.Flag("--dry-run", options.IsDryRun, "Only show what would happen");
    command.Flag("--yes", options.IsAgreedTo, "Don't ask");
    command.Flag("--for-good", options.IsForGood, "Allow what can never be changed again");
}

} // namespace acg::tool
