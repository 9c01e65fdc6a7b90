// acg protect: new keys and levels for a sector, with all that can't be undone said before it is done.
#include "acg/AccessWords.h"
#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Output.h"
#include "acg/SectorTrailer.h"
#include "acg/System.h"
#include "acg/Text.h"

#include <cstdio>

namespace acg::tool
{

namespace
{

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

void ParseNewKeys(const AccessOptions& given, NewTrailer& trailer)
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
void WarnOfPurses(const ConditionBytes& before, const ConditionBytes& after, int32_t sector)
{
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (TripleIn(before, slot) == "110" && TripleIn(after, slot) == "100") {
            std::printf("Taken away: a value in %s can no longer be incremented or decremented.\n",
                        NameOfSlot(slot, sector).c_str());
        }
    }
}

bool IsAgreedTo()
{
    std::fflush(stdout);
    std::fputs("Write this? Type yes: ", stderr);
    char answer[8] = {};
    return std::fgets(answer, sizeof answer, stdin) != nullptr && std::string_view(answer) == "yes\n";
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

} // namespace

int Protect(const Options& Options)
{
    const AccessOptions& given = Options.Access;
    const int32_t sector = ParseSector(given.Sector);
    const Key key = TheKey(Options.Key);
    NewTrailer wanted{.Levels = {.Levels = ParseLevels(given.Levels), .KeysToUse = KeysAsOnCard}};
    ParseNewKeys(given, wanted);
    if (!given.KeysToUse.empty()) {
        wanted.Levels.KeysToUse = ParseKeysToUse(given.KeysToUse);
        wanted.Bytes = EncodeOrRefuse(wanted.Levels);
    }
    if (!given.BX.empty()) {
        wanted.BX =
            static_cast<uint8_t>(ParseNumber(given.BX, 0, UINT8_MAX, "--bx is a number from 0 to 255"));
    }
    if (!given.IsDryRun && !given.IsAgreedTo && !IsTerminal(stdin)) {
        throw UsageError{"there is no terminal to ask on: give --yes to write, or --dry-run to look"};
    }

    const auto encoder = OpenReader(Options.Parameters);
    const std::wstring serial = SerialNumberOf(*encoder);
    const Block trailer = ReadTrailer(*encoder, sector, key);
    const ConditionBytes before = ConditionBytesOf(trailer);
    const TrailerRights rights = RightsGranted(before).Trailer;
    if (given.KeysToUse.empty()) {
        wanted.Levels.KeysToUse = KeysUsedBy(rights);
        wanted.Bytes = EncodeOrRefuse(wanted.Levels);
    }
    if (given.BX.empty()) {
        wanted.BX = UserByteOf(trailer);
    }
    const ConditionBytes after = wanted.Bytes;

    std::printf(
        "Sector %d now: levels %s, byte 9 is %d\n\n%s\nSector %d afterwards: levels %s, byte 9 is %d\n\n%s",
        sector, LevelsInWords(before).c_str(), UserByteOf(trailer), AccessTable(before, sector).c_str(),
        sector, LevelsInWords(after).c_str(), wanted.BX, AccessTable(after, sector).c_str());
    for (const std::string& line : Deviations(wanted.Levels, after, sector)) {
        std::puts(line.c_str());
    }
    WarnOfPurses(before, after, sector);

    RequireRights(rights, key.Type == KeyTypeB ? Keys::B : Keys::A,
                  before != after || UserByteOf(trailer) != wanted.BX);
    if (AreConditionsFixed(RightsGranted(after).Trailer) && !AreConditionsFixed(rights) && !given.IsForGood) {
        throw UsageError{
            "this freezes the sector for good; nothing was written. Give --for-good if it is meant"};
    }
    if (given.IsDryRun) {
        std::puts("Nothing was written: --dry-run.");
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
        PrintProblem("the trailer may have been written: try both the new keys and the old ones");
        throw;
    } catch (const CardFailure&) {
        if (isWritten) {
            PrintProblem(
                "the trailer was written without a failure, but reading back with the new keys fails: "
                "try both the new keys and the old ones");
        }
        throw;
    }
    std::puts("Written, and read back with the new keys.");
    return Done;
}

} // namespace acg::tool
