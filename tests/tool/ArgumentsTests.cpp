// What the tool makes of levels, ranges and dumps that people write.
#include "tests/TemporaryFolder.h"
#include "tests/tool/Sectors.h"
#include "tool/Failures.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace acg;
using namespace acg::tool;

namespace
{

std::string Joined(const std::array<int32_t, SectorSlots>& levels)
{
    return Format("%d,%d,%d,%d", levels[0], levels[1], levels[2], levels[3]);
}

/// A text, and what it is read as; or of an error message a part that no other one has.
struct Reading {
    std::string Name;
    std::string Text;
    std::string Result;
};
std::string NameOfReading(const testing::TestParamInfo<Reading>& row)
{
    return row.param.Name;
}

using LevelListTest = testing::TestWithParam<Reading>;

const Reading LevelLists[] = {
    {"Numbers", "0,15,13,12", "0,15,13,12"},
    {"Words", "r/rw,-/-,rw/w,-/keys+bits", "13,0,11,12"},
    {"WordsOfTheTrailer", "0,0,0,keys/bits", "0,0,0,9"},
    {"BothKinds", "-/r,4,w/-,3", "4,4,2,3"},
    {"ThreeLevels", "1,2,3", "--levels is four levels"},
    {"FiveLevels", "1,2,3,4,5", "--levels is four levels"},
    {"Empty", "", "--levels is four levels"},
    {"AnEmptyLevel", "1,,3,4", R"("" isn't a level of a data block)"},
    {"Sixteen", "0,0,16,0", R"("16" isn't a level of a data block)"},
    {"Negative", "0,0,0,-1", R"("-1" isn't a level of the trailer)"},
    {"OneKey", "r,0,0,0", R"("r" isn't a level of a data block)"},
    {"NothingOfKeyB", "r/,0,0,0", R"("r/" isn't a level of a data block)"},
    {"ThreeKeys", "r/r/r,0,0,0", R"("r/r/r" isn't a level of a data block)"},
    {"DataWordsOfTheTrailer", "0,0,0,r/rw", R"("r/rw" isn't a level of the trailer)"},
    {"TrailerWordsOfData", "keys/bits,0,0,0", R"("keys/bits" isn't a level of a data block)"},
    {"Capitals", "R/RW,0,0,0", R"("R/RW" isn't a level of a data block)"},
};

TEST_P(LevelListTest, IsNumbersOrWords)
{
    const auto& [name, text, result] = GetParam();
    try {
        EXPECT_EQ(Joined(ParseLevelList(text, "--levels")), result);
    } catch (const UsageError& error) {
        EXPECT_NE(error.Text.find(result), std::string::npos) << error.Text;
    }
}
INSTANTIATE_TEST_SUITE_P(, LevelListTest, testing::ValuesIn(LevelLists), NameOfReading);

using NearestLevelsTest = testing::TestWithParam<Reading>;

// Fewest other rights first, then the least rights.
const Reading NearestLevels[] = {
    {"AreTheSameIfStored", "13,5,0,12 2", "13,5,0,12"},
    {"OfDataThatOnlyKeyAReads", "1,3,2,12 2", "0,0,0,12"},
    {"OfDataThatKeyBHalfReads", "6,7,14,8 2", "4,5,14,8"},
    {"OfATrailerThatKeyAWrites", "15,15,15,3 2", "15,15,15,0"},
    {"OfATrailerThatBothKeysWrite", "0,0,0,15 2", "0,0,0,12"},
    {"OfKeyAAloneIgnoresKeyB", "5,13,15,12 1", "5,13,15,12"},
};

TEST_P(NearestLevelsTest, CanBeStored)
{
    const auto& [name, text, result] = GetParam();
    const size_t blank = text.find(' ');
    const SectorLevels levels = ParseLevels({text.substr(0, blank), text.substr(blank + 1), ""});
    const SectorLevels nearest = NearestStorable(levels);
    EXPECT_EQ(Joined(nearest.Levels), result);
    EXPECT_TRUE(Encode(nearest));
    EXPECT_EQ(Encode(levels).has_value(), nearest.Levels == levels.Levels);
}
INSTANTIATE_TEST_SUITE_P(, NearestLevelsTest, testing::ValuesIn(NearestLevels), NameOfReading);

using RangeTest = testing::TestWithParam<Reading>;

const Reading Ranges[] = {
    {"One", "7", "7 to 7"},
    {"Several", "4-6", "4 to 6"},
    {"All", "0-39", "0 to 39"},
    {"OneAsARange", "4-4", "4 to 4"},
    {"Backwards", "6-4", "6-4 ends before it begins"},
    {"Beyond", "4-40", "from 0 to 39"},
    {"Negative", "-1-3", "from 0 to 39"},
    {"WithoutEnd", "4-", "from 0 to 39"},
    {"WithoutBegin", "-4", "from 0 to 39"},
    {"Three", "1-2-3", "from 0 to 39"},
    {"Empty", "", "from 0 to 39"},
};

TEST_P(RangeTest, HasItsFirstAndItsLastSector)
{
    const auto& [name, text, result] = GetParam();
    try {
        const auto [first, last] = ParseRange(text, ParseSector);
        EXPECT_EQ(Format("%d to %d", first, last), result);
    } catch (const UsageError& error) {
        EXPECT_NE(error.Text.find(result), std::string::npos) << error.Text;
    }
}
INSTANTIATE_TEST_SUITE_P(, RangeTest, testing::ValuesIn(Ranges), NameOfReading);

const std::string Line = "00112233445566778899aAbBcCdDeEfF";
const std::string Lines256 = [] {
    std::string lines;
    for (int line = 0; line <= LastBlock; ++line) {
        lines += Line + '\n';
    }
    return lines;
}();

using DumpFileTest = testing::TestWithParam<Reading>;

// Text begins with "t:". The result: the number of blocks, and which bytes of the last one are known.
const Reading DumpFiles[] = {
    {"Raw", std::string(32, 'x'), "2 ffff"},
    {"RawThatIsNotWhole", std::string(33, 'x'), "its last block isn't whole"},
    {"RawOf4K", std::string(4096, 'x'), "256 ffff"},
    {"RawThatIsTooLong", std::string(4112, 'x'), "longer than that of a 4K card"},
    {"Empty", "", "it is empty"},
    {"Text", "t:" + Line + "\r\n" + Line, "2 ffff"},
    {"TextOf4K", "t:" + Lines256, "256 ffff"},
    {"TextThatIsTooLong", "t:" + Lines256 + Line, "longer than that of a 4K card"},
    {"TextWithUnknownBytes", "t:--" + Line.substr(2, 28) + "--\n", "1 7ffe"},
    {"TextWithHalfAByte", "t:" + Line + "\n-" + Line.substr(1), "line 2, isn't 32"},
    {"TextWithHyphensAcrossBytes", "t:0--" + Line.substr(3), "line 1, isn't 32"},
    {"TextWithALetter", "t:G" + Line.substr(1), "line 1, isn't 32"},
    {"TextWithAShortLine", "t:" + Line.substr(2), "line 1, isn't 32"},
    {"TextWithALongLine", "t:" + Line + "00", "line 1, isn't 32"},
    {"TextWithAnEmptyLine", "t:" + Line + "\n\n", "line 2, isn't 32"},
};

TEST_P(DumpFileTest, IsReadOrRefused)
{
    const auto& [name, text, result] = GetParam();
    const TemporaryFolder folder;
    const bool isText = text.starts_with("t:");
    const std::string file = (folder.Path / (isText ? "dump.TXT" : "dump.bin")).string();
    std::ofstream(file, std::ios::binary) << (isText ? text.substr(2) : text);
    try {
        const Dump dump = ReadDump(file);
        EXPECT_EQ(Format("%d %04x", static_cast<int>(dump.size()), dump.back().Known), result);
        WriteDump(file + "2.txt", dump, ExistingFile::Kept);
        EXPECT_EQ(ReadDump(file + "2.txt"), dump);
        EXPECT_THROW(WriteDump(file + "2.txt", dump, ExistingFile::Kept), OtherFailure);
    } catch (const UsageError& error) {
        EXPECT_NE(error.Text.find(result), std::string::npos) << error.Text;
    }
}
INSTANTIATE_TEST_SUITE_P(, DumpFileTest, testing::ValuesIn(DumpFiles), NameOfReading);

} // namespace
