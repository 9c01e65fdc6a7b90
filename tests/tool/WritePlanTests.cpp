// What acg restore writes of a dump, with which key and in which order, and what it leaves out and why.
#include "tests/tool/Sectors.h"
#include "tool/WritePlan.h"

#include <gtest/gtest.h>

using namespace acg;
using namespace acg::tool;

namespace
{

/// Sectors as words; without a trailer in the dump, trailers aren't restored. Of the card, Opens says which
/// of its keys are at hand. Steps and the key of each: "block 4 AF" is written with key A, FFFFFFFFFFFF.
struct RestoreCase {
    std::string Name;
    std::string Dumped;
    std::string OnCard;
    std::string Opens;
    std::string Steps;
    std::string LeftOut;
    int32_t Sector = 1;
};
using WritePlanTest = testing::TestWithParam<RestoreCase>;

// Access bits: FF0780 of a fresh card; 787788 key B alone writes anything; FF0F00 key A writes the keys,
// nobody the access bits; F78F00 the same with key B; F78780 key B writes the access bits, nobody the keys;
// 8870F7 nobody reads or writes data; FF0690 key A as on a fresh card, but block 4 is read alone.
const RestoreCase RestoreCases[] = {
    {"Nothing", "11 22 33 FFF078069F", "11 22 33 FFF078069F", "A", ""},
    {"Data", "11 22 33", "00 00 33 FFF078069F", "A", "blocks 4-5 AF"},
    {"DataWithAGap", "11 22 33", "00 22 00 FFF078069F", "A", "blocks 4, 6 AF"},
    {"DataWithKeyB", "11 22 33", "00 00 00 A78778869B", "AB", "blocks 4-6 BB"},
    {"DataWithoutKeyB", "11 22 33", "00 00 00 A78778869-", "A", "",
     "blocks 4-6: not written: only key B may write it, and key B isn't known"},
    {"KeyBThatIsNone", "11 22 33", "00 22 33 -FF078069F", "B", "",
     "block 4: not written: only key A may write it, and key A isn't known"},
    {"DataOfNobody", "11 22 33", "00 00 33 F8870F769F", "A", "",
     "blocks 4-5: not written: no key may write it"},
    {"UnknownOfTheDump", "11 -- 33", "00 00 00 FFF078069F", "A", "blocks 4, 6 AF",
     "block 5: not written: not in the dump"},
    {"UnreadOfTheCard", "11 22 33", "11 -- 33 FFF078069F", "A", "block 5 AF"},
    {"Block0", "11 22 33", "00 00 33 FFF078069F", "A", "block 1 AF", "", 0},
    {"SlotsOfALargeSector", "11 22 33", "00 22 00 FFF078069F", "A", "blocks 128-132, 138-142 AF", "", 32},
    {"NoKey", "11 22 33", "-- -- -- ----------", "", "", "blocks 4-6: not written: no key opens the sector"},
    {"NoKeyForTheTrailer", "11 22 33 FFF078069F", "-- -- -- ----------", "", "",
     "blocks 4-6: not written: no key opens the sector; "
     "the trailer of sector 1: not written: no key opens the sector"},
    {"AccessBitsUnread", "11 22 33", "00 -- -- F--------F", "AB", "",
     "blocks 4-6: not written: no key that opens the sector reads its access bits"},
    {"AccessBitsOfTheCardContradictory", "11 22 33", "00 22 33 FFF078169F", "A", "",
     "blocks 4-6: not written: the access bits of the sector contradict themselves"},
    {"AccessBitsOfTheDumpContradictory", "11 22 33 FFF078169F", "00 22 33 FFF078069F", "A", "",
     "blocks 4-6: not written: the access bits that the dump has for the sector contradict themselves; "
     "the trailer of sector 1: not written: the access bits that the dump has for the sector contradict "
     "themselves"},
    {"Trailer", "11 22 33 A78778869B", "11 22 33 FFF078069F", "A", "the trailer of sector 1 AF"},
    {"TrailerByte9", "11 22 33 FFF078042F", "11 22 33 FFF078069F", "A", "the trailer of sector 1 AF"},
    {"TrailerWithKeyB", "11 22 33 FFF078069F", "11 22 33 A78778869B", "AB", "the trailer of sector 1 BB"},
    {"TrailerWithoutKeyB", "11 22 33 A78778869B", "11 22 33 A78778869-", "A", "",
     "the trailer of sector 1: not written: only key B may write its keys, and key B isn't known"},
    {"AccessBitsAlone", "11 22 33 AFF078069B", "11 22 33 AF7878069B", "AB", "the trailer of sector 1 BB"},
    {"KeysOfNobody", "11 22 33 CF7878069B", "11 22 33 AF7878069B", "AB", "",
     "the trailer of sector 1: not written: no key may write its keys"},
    {"AccessBitsOfNobody", "11 22 33 CFF078069D", "11 22 33 AF78F0069B", "AB", "",
     "the trailer of sector 1: not written: no key may write its access bits"},
    {"KeysButNotTheAccessBits", "11 22 33 CF78F0069D", "11 22 33 AF78F0069B", "AB",
     "the trailer of sector 1 BB"},
    {"KeyAUnknown", "11 22 33 -FF078069F", "11 22 33 FFF078069F", "A", "",
     "the trailer of sector 1: not written: the dump has only a part of it"},
    {"KeyAOfZerosIsUnknown", "11 22 33 0FF078069F", "11 22 33 FFF078069F", "A", "",
     "the trailer of sector 1: not written: the dump has only a part of it"},
    {"KeyBOfZerosIsUnknown", "11 22 33 A787788690", "11 22 33 FFF078069F", "A", "",
     "the trailer of sector 1: not written: the dump has only a part of it"},
    {"KeyBOfZerosThatIsData", "11 22 33 AFF0780690", "11 22 33 FFF078069F", "A",
     "the trailer of sector 1 AF"},
    {"Frozen", "11 22 33 FFF0F0069F", "11 22 33 FFF078069F", "A", "the trailer of sector 1 AF, frozen"},
    {"FrozenBefore", "11 22 33 AFF0F0069F", "11 22 33 FFF0F0069F", "A", "the trailer of sector 1 AF"},
    {"DataThenTrailer", "11 22 33 A78778869B", "00 22 33 FFF078069F", "A",
     "block 4 AF, the trailer of sector 1 AF"},
    {"DataAfterTheTrailer", "11 22 33 AFF078069B", "00 00 33 FFF069069F", "A",
     "block 5 AF, the trailer of sector 1 AF, block 4 AA"},
    {"DataAfterTheTrailerWithKeyB", "11 22 33 A78778869B", "00 22 33 F8870F769F", "A",
     "the trailer of sector 1 AF, block 4 BB"},
    {"DataThatTheTrailerDoesNotAllow", "11 22 33 AFF069069B", "00 22 33 F8870F769F", "A",
     "the trailer of sector 1 AF", "block 4: not written: no key may write it"},
};

TEST_P(WritePlanTest, WritesWhatDiffersWithAKeyThatMay)
{
    const auto& [name, dumped, onCard, opens, steps, leftOut, sector] = GetParam();
    const bool hasTrailers = std::ranges::count(dumped, ' ') == 3;
    Dump dump(static_cast<size_t>(TrailerBlock(sector - 1) + 1));
    const Dump words = SectorOfWords(dumped, sector);
    dump.insert(dump.end(), words.begin(), words.end());
    SectorContents card{.Blocks = SectorOfWords(onCard, sector)};
    const DumpedBlock& trailer = card.Blocks.back();
    card.IsTrailerRead = (trailer.Known & AccessBytes) == AccessBytes;
    card.Keys.A = opens.find('A') != std::string::npos ? std::optional<size_t>(0) : std::nullopt;
    card.Keys.B = opens.find('B') != std::string::npos ? std::optional<size_t>(1) : std::nullopt;
    const KeyRing keys = {{Trailer(trailer.Bytes).KeyA, ""}, {Trailer(trailer.Bytes).KeyB, ""}};

    WritePlan plan(dump, hasTrailers ? Asked::All : Asked::Data);
    plan.Add(sector, card, keys);
    std::string planned;
    for (const WriteStep& step : plan.Steps()) {
        planned += planned.empty() ? "" : ", ";
        planned +=
            step.Name() + (step.Login.IsB() ? " B" : " A") + "0123456789ABCDEF"[step.Login.Bytes[0] & 15];
    }
    planned += plan.Frozen() == std::vector{sector} ? ", frozen" : "";
    EXPECT_EQ(planned, steps);

    Output out{.IsJson = true};
    testing::internal::CaptureStderr();
    plan.Show(out);
    std::string said;
    for (const JsonObject& problem : out.Json.value("problems", JsonObject::array())) {
        said += (said.empty() ? "" : "; ") + problem.get<std::string>();
    }
    EXPECT_EQ(said, leftOut);
    EXPECT_EQ(plan.LeavesOut(), !said.empty());
    testing::internal::GetCapturedStderr();
}
INSTANTIATE_TEST_SUITE_P(, WritePlanTest, testing::ValuesIn(RestoreCases),
                         [](const auto& row) { return row.param.Name; });

} // namespace
