// What acg protect does with a sector, on a simulated card: what it refuses, in which order it writes, and
// what the card then holds.
#include "tests/TemporaryFolder.h"
#include "tests/tool/Sectors.h"
#include "tool/SectorPlan.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace acg;
using namespace acg::tool;

namespace
{

/// Sector 1 as words before and after; the login and the new keys as in "AF" and "AB"; --levels, --keys and
/// --value. Parts: what is written, in its order, or of the failure a part.
struct ProtectCase {
    std::string Name;
    std::string Before;
    std::string Login;
    std::string NewKeys;
    std::string Levels;
    std::string Parts;
    std::string After;
    bool Erases = false;
};
using SectorPlanTest = testing::TestWithParam<ProtectCase>;

const std::string Fresh = "11 22 33 FFF078069F";
const std::string Protected = "11 22 33 A78778869B"; // 13,13,13,12
const std::string TheTrailer = "the trailer of sector 1";
const std::string TheData = "the data blocks of sector 1";
const std::string KeyBWrites = "13,13,13,12 2";
const std::string Transport = "15,15,15,3 1";

// The access bits are those of the tests of RestorePlan.
const ProtectCase ProtectCases[] = {
    {"AFreshSector", Fresh, "AF", "AB", KeyBWrites, TheTrailer, Protected},
    {"ASectorThatIsDone", Protected, "AF", "AB", KeyBWrites, "", Protected},
    {"NewKeysOverTheSameLevels", Protected, "BB", "CD", KeyBWrites, TheTrailer, "11 22 33 C78778869D"},
    {"LevelsOfTheCardsOwnKeys", Protected, "BB", "AB", "0,4,5,12", TheTrailer, "11 22 33 A6C30F969B"},
    {"NewKeyAWithOtherLevels", "11 22 33 AFF078069B", "AF", "AB", KeyBWrites,
     "opens with the new key A, but has"},
    {"NewKeyAWithAnotherKeyB", "11 22 33 A78778869C", "AF", "AB", KeyBWrites,
     "opens with the new key A, but has"},
    {"NeitherKey", "11 22 33 C78778869D", "AF", "AB", KeyBWrites, "failure -7"},
    {"NoNewKeysNorTheOld", Protected, "AF", "", KeyBWrites, "failure -7"},
    {"LevelsThatCannotBeStored", Fresh, "AF", "AB", "1,3,3,12 2", "level 1 can't be stored"},
    {"ContradictoryAccessBits", "11 22 33 FFF078169F", "AF", "AB", KeyBWrites, "failure -7"},
    {"KeyAWhereKeyBWrites", Protected, "AA", "CD", KeyBWrites,
     "key A may not write the keys of this sector; key B"},
    {"KeysOfNobody", "11 22 33 AF7878069B", "BB", "CD", KeyBWrites,
     "without new keys, the access bits alone"},
    {"AccessBitsAlone", "11 22 33 AF7878069B", "BB", "", KeyBWrites, TheTrailer, Protected},
    {"AccessBitsThatMakeKeyBData", "11 22 33 AF7878069B", "BB", "", Transport, "key B opens nothing now",
     "11 22 33 AFF078069B"},
    {"KeysThatHaveToBeGiven", Fresh, "AF", "", KeyBWrites, "so give both"},
    {"AccessBitsOfNobody", "11 22 33 FFF0F0069F", "AF", "AB", Transport,
     "may not write the access bits and byte 9"},
    {"KeysUnderFixedAccessBits", "11 22 33 FFF0F0069F", "AF", "AB", "15,15,15,1 1", TheTrailer,
     "11 22 33 AFF0F0069B"},
    {"APurse", "=5 22 33 FFF078069F", "AF", "AB", "13,13,13,12 2 0", "block 4, " + TheTrailer,
     "=5 22 33 A68778969B"},
    {"APurseThatIsNone", "11 =5 33 FFF078069F", "AF", "AB", "13,13,13,12 2 0,1",
     "block 4 isn't a value block"},
    {"APurseThatKeyBWrites", "11 =5 33 A78778869B", "AA", "", "13,13,13,12 2 1", "may not write the keys"},
    {"APurseOfNobody", "=5 =5 33 F8870F769F", "AF", "AB", "13,13,13,12 2 1", "which no key may write"},
    {"Erased", Fresh, "AF", "AB", KeyBWrites, TheData + ", " + TheTrailer, "00 00 00 A78778869B", true},
    {"ErasedAfterwards", "11 22 33 F8870F769F", "AF", "AB", Transport, TheTrailer + ", " + TheData,
     "00 00 00 AFF078069B", true},
    {"ErasedByTheKeyThatMayAllButOne", "11 22 33 FFF069069F", "AF", "AB", Transport,
     TheTrailer + ", " + TheData, "00 00 00 AFF078069B", true},
    {"DoneButNotErased", "00 22 00 AFF078069B", "AF", "AB", Transport, TheData, "00 00 00 AFF078069B", true},
    {"DoneAndErased", "00 00 00 AFF078069B", "AF", "AB", Transport, "", "00 00 00 AFF078069B", true},
};

TEST_P(SectorPlanTest, IsRefusedOrWrittenAndReadBack)
{
    const auto& [name, before, login, newKeys, levels, parts, after, erases] = GetParam();
    const TemporaryFolder folder;
    const std::string file = (folder.Path / "card.bin").string();
    static int32_t cards = 0x5EC00000; // a card of its own for each test
    Dump card = SectorOfWords("00 00 00 FFF078069F", 0);
    for (int32_t sector = 1; sector <= 15; ++sector) {
        std::ranges::copy(SectorOfWords(sector == 1 ? before : Fresh, sector), std::back_inserter(card));
    }
    WriteDump(file, card, ExistingFile::Kept);
    LevelOptions options;
    std::istringstream(levels) >> options.Levels >> options.KeysToUse >> options.ValueBlocks;
    ProtectRequest request{.Login = LoginOf(login), .Levels = ParseLevels(options), .Erases = erases};
    for (const char digit : newKeys) {
        request.Keys.push_back(KeyOf(digit));
    }
    Output out{.IsJson = true};
    std::string done;
    try {
        CardSession session({Format("Device=x,uid=%08X,image=", ++cards) + file + ",save=" + file});
        WriteReport report(out);
        report.BeginCard(session);
        SectorPlan plan = PlanSector(session, request, 1);
        CompletePlan(session, request, plan, out);
        AddParts(request, plan, /*isAlone=*/false, report);
        WriteSector(session, request, plan, report);
        EXPECT_EQ(out.Outcome, parts.empty() ? "" : "\n  written   yes: " + parts);
        done = parts;
    } catch (const OtherFailure& failure) {
        done = failure.Text;
    } catch (const UsageError& error) {
        done = error.Text;
    } catch (const CardFailure& failure) {
        done = Format("failure %d", failure.Record.Number);
    }
    EXPECT_NE(done.find(parts), std::string::npos) << done;
    const Dump then = ReadDump(file);
    EXPECT_TRUE(
        std::ranges::equal(SectorOfWords(after.empty() ? before : after), std::span(then).subspan(4, 4)));
}
INSTANTIATE_TEST_SUITE_P(, SectorPlanTest, testing::ValuesIn(ProtectCases),
                         [](const auto& row) { return row.param.Name; });

} // namespace
