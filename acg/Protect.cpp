// acg protect: new keys and levels for a sector, with all that can't be undone said before it is done.
#include "acg/AccessWords.h"
#include "acg/CommandLine.h"
#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Json.h"
#include "acg/SectorTrailer.h"
#include "acg/System.h"
#include "acg/Text.h"

#include <nlohmann/json.hpp>

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

/// All that goes into the trailer. Nothing of it comes from what the class reads on writing.
struct NewTrailer {
    std::wstring KeyA;
    std::wstring KeyB;
    SectorLevels Levels;
    ConditionBytes Bytes;
    uint8_t BX;
};

std::wstring NewKey(const std::string& text, const char* option, const char* variable)
{
    if (!text.empty()) {
        return ParseKey(text, option);
    }
    if (const auto key = EnvironmentVariable(variable)) {
        return ParseKey(*key, Format("the key in %s", variable));
    }
    throw UsageError{Format("a new key is required: %s, --new-keys, or the variable %s", option, variable)};
}

void ParseNewKeys(const Options& given, NewTrailer& trailer)
{
    if (given.NewKeysFile.empty()) {
        trailer.KeyA = NewKey(given.NewA, "--new-a", "ACG_NEW_A");
        trailer.KeyB = NewKey(given.NewB, "--new-b", "ACG_NEW_B");
        return;
    }
    const std::vector<std::wstring> keys = ReadKeys(given.NewKeysFile);
    if (keys.size() != 2) {
        throw UsageError{given.NewKeysFile + " has to have two keys: A, then B"};
    }
    trailer.KeyA = keys.front();
    trailer.KeyB = keys.back();
}

std::wstring SerialNumberOf(Encoder& encoder)
{
    std::wstring serial;
    Must(encoder, encoder.ReadSerialNumber(serial));
    return serial;
}

/// Where the key may write only a part of a trailer, the card silently takes that part.
void RequireRights(const TrailerRights& rights, Keys key, bool changesConditions)
{
    const char* const name = key == Keys::A ? "key A" : "key B";
    if (!Has(rights.WriteKeys, key)) {
        throw OtherFailure{Format("%s may not write the keys of this sector; nothing was written", name)};
    }
    if (changesConditions && !Has(rights.WriteConditions, key)) {
        throw OtherFailure{
            Format("%s may not write the access bits and byte 9 of this sector; nothing was written", name)};
    }
}

/// The class stores the rights of a purse only for a block that it has written as a value block itself.
void WarnOfPurses(const ConditionBytes& before, const ConditionBytes& after, int32_t sector, Output& out)
{
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (TripleIn(before, slot) == "110" && TripleIn(after, slot) == "100") {
            out.Print(Format("Taken away: a value in %s can no longer be incremented or decremented.",
                             NameOfSlot(slot, sector).c_str()));
        }
    }
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

void Write(Encoder& encoder, int32_t sector, const Key& key, const NewTrailer& trailer)
{
    const auto level = [&](size_t slot) {
        return static_cast<SCBS_SecurityLevelEnum>(trailer.Levels.Levels[slot]);
    };
    Must(encoder, encoder.WriteSectorTrailer(
                      sector, key.Digits, key.Type, trailer.KeyA, trailer.KeyB, trailer.Levels.KeysToUse,
                      level(0), level(1), level(2),
                      static_cast<SCSS_SecurityLevelEnum>(trailer.Levels.Levels[TrailerSlot]), trailer.BX));
}

/// Logs in with the new keys and compares what reads back.
void Verify(Encoder& encoder, int32_t sector, const NewTrailer& expected)
{
    const bool isKeyB = KeysUsedBy(RightsGranted(expected.Bytes).Trailer) == BothKeys;
    bool isTaken = true;
    for (const Key& key : {Key{expected.KeyA, KeyTypeA}, Key{expected.KeyB, KeyTypeB}}) {
        if (key.Type == KeyTypeB && !isKeyB) {
            continue;
        }
        const Block trailer = ReadTrailer(encoder, sector, key);
        isTaken = isTaken && ConditionBytesOf(trailer) == expected.Bytes &&
                  UserByteOf(trailer) == expected.BX && (isKeyB || KeyBOf(trailer) == expected.KeyB);
    }
    if (!isTaken) {
        throw OtherFailure{"the card holds something other than was written: acg trailer shows what"};
    }
}

int Protect(const Options& given, Context& context)
{
    Output& out = context.Out;
    const int32_t sector = ParseSector(given.Sector);
    const Key key = TheKey(given.Key);
    NewTrailer wanted{.Levels = {.Levels = ParseLevels(given.Levels.Levels), .KeysToUse = KeysAsOnCard}};
    ParseNewKeys(given, wanted);
    if (!given.Levels.KeysToUse.empty()) {
        wanted.Levels.KeysToUse = ParseKeysToUse(given.Levels.KeysToUse);
        wanted.Bytes = EncodeOrRefuse(wanted.Levels);
    }
    if (!given.BX.empty()) {
        wanted.BX =
            static_cast<uint8_t>(ParseNumber(given.BX, 0, UINT8_MAX, "--bx is a number from 0 to 255"));
    }
    if (!given.IsDryRun && !given.IsAgreedTo && (out.IsJson() || !IsTerminal(stdin))) {
        throw UsageError{"there is nobody to ask: give --yes to write, or --dry-run to look"};
    }

    const auto encoder = OpenReader(context.Parameters);
    const std::wstring serial = SerialNumberOf(*encoder);
    const Block trailer = ReadTrailer(*encoder, sector, key);
    const ConditionBytes before = ConditionBytesOf(trailer);
    const TrailerRights rights = RightsGranted(before).Trailer;
    if (given.Levels.KeysToUse.empty()) {
        wanted.Levels.KeysToUse = KeysUsedBy(rights);
        wanted.Bytes = EncodeOrRefuse(wanted.Levels);
    }
    if (given.BX.empty()) {
        wanted.BX = UserByteOf(trailer);
    }
    const ConditionBytes after = wanted.Bytes;

    const std::vector<std::string> deviations = Deviations(wanted.Levels, after, sector);
    out.Json() = {{"before", ToJson(ShownAccess{sector, before, UserByteOf(trailer), {}})},
                  {"after", ToJson(ShownAccess{sector, after, wanted.BX, deviations})}};
    out.Print(Format("Sector %d now: levels %s, byte 9 is %d\n\n%s\n", sector, LevelsInWords(before).c_str(),
                     UserByteOf(trailer), AccessTable(before, sector).c_str()));
    out.Print(Format("Sector %d afterwards: levels %s, byte 9 is %d\n\n%s", sector,
                     LevelsInWords(after).c_str(), wanted.BX, AccessTable(after, sector).c_str()));
    for (const std::string& line : deviations) {
        out.Print(line);
    }
    WarnOfPurses(before, after, sector, out);

    RequireRights(rights, key.Type == KeyTypeB ? Keys::B : Keys::A,
                  before != after || UserByteOf(trailer) != wanted.BX);
    if (AreConditionsFixed(RightsGranted(after).Trailer) && !AreConditionsFixed(rights) && !given.IsForGood) {
        throw UsageError{
            "this freezes the sector for good; nothing was written. Give --for-good if it is meant"};
    }
    if (given.IsDryRun) {
        out.Print("Nothing was written: --dry-run.");
        return Done;
    }
    if (!given.IsAgreedTo && !IsAgreedTo()) {
        throw OtherFailure{"not agreed to; nothing was written"};
    }
    if (SerialNumberOf(*encoder) != serial) {
        throw OtherFailure{"another card lies in the field now; nothing was written"};
    }
    bool isWritten = false;
    try {
        Write(*encoder, sector, key, wanted);
        isWritten = true;
        Verify(*encoder, sector, wanted);
    } catch (const Interruption&) {
        out.Problem("the trailer may have been written: try both the new keys and the old ones");
        throw;
    } catch (const CardFailure&) {
        if (isWritten) {
            out.Problem(
                "the trailer was written without a failure, but reading back with the new keys fails: "
                "try both the new keys and the old ones");
        }
        throw;
    }
    out.Print("Written, and read back with the new keys.");
    return Done;
}

} // namespace

void AddProtect(CommandLine& Commands)
{
    const auto given = std::make_shared<Options>();
    CLI::App& command =
        Commands.Add("protect", "Writes new keys and levels for a sector, and says first what that means",
                     "acg protect 1 --key-file a.txt --new-keys b.txt --levels 13,13,13,12 --keys 2",
                     [given](Context& context) { return Protect(*given, context); });
    TakesSector(command, given->Sector);
    TakesKey(command, given->Key);
    TakesLevels(command, given->Levels)
        .description("1 for key A alone, 2 for both keys; else as on the card");
    command.add_option("--new-a", given->NewA, "The new key A; else the variable ACG_NEW_A")
        ->type_name("KEY");
    command.add_option("--new-b", given->NewB, "The new key B; else the variable ACG_NEW_B")
        ->type_name("KEY");
    command.add_option("--new-keys", given->NewKeysFile, "A file with the new key A, then the new key B")
        ->type_name("FILE")
        ->excludes("--new-a")
        ->excludes("--new-b");
    command.add_option("--bx", given->BX, "Byte 9 of the trailer, 0 to 255; else as on the card")
        ->type_name("N");
    command.add_flag("--dry-run", given->IsDryRun, "Only show what would happen");
    command.add_flag("--yes", given->IsAgreedTo, "Don't ask");
    command.add_flag("--for-good", given->IsForGood, "Allow what can never be changed again");
}

} // namespace acg::tool
