// The sector trailer operations on a scripted reader: what they refuse, what they send, what a failure
// leaves.
#include "tests/ScriptedReader.h"

#include <algorithm>

namespace acg
{

namespace
{

const std::wstring Key = L"a1b2c3d4e5f6";
const std::wstring NewKeyA = L" 0a0b0c0d0e0f ";
const std::wstring NewKeyB = L"1A1B1C1D1E1F";

class SectorTrailersTest : public EncoderTest
{
protected:
    SectorTrailersTest()
    {
        reader.Reply("read block", {"000000000000FF078069FFFFFFFFFFFF"});
        reader.Reply("write block", {""});
    }

    /// WriteSectorTrailer with arguments that are all good, but for those that a test changes.
    struct Arguments {
        std::wstring KeyA = NewKeyA;
        std::wstring KeyB = NewKeyB;
        uint8_t KeysToUse = KeyAAlone;
        int32_t Levels[3] = {-1, -1, -1};
        int32_t Conditions = -1;
        std::optional<int32_t> BX;
        int32_t Sector = 33;
    };
    sceReturnCode Write(const Arguments& given)
    {
        const auto level = [](int32_t number) { return static_cast<SCBS_SecurityLevelEnum>(number); };
        return encoder.WriteSectorTrailer(given.Sector, Key, KeyTypeB, given.KeyA, given.KeyB,
                                          given.KeysToUse, level(given.Levels[0]), level(given.Levels[1]),
                                          level(given.Levels[2]),
                                          static_cast<SCSS_SecurityLevelEnum>(given.Conditions), given.BX);
    }
    [[nodiscard]] long CommandCount() const { return std::ranges::count(reader.Commands(), ',') + 1; }
};

TEST_F(SectorTrailersTest, BadArgumentsAreRefusedInOrderBeforeAnyCommand)
{
    constexpr int32_t BadKeyNumber = -12;
    constexpr int32_t BadSecurityNumber = -13;
    constexpr int32_t BadBXNumber = -15;
    const std::pair<Arguments, int32_t> cases[] = {
        {{.KeyA = L"0a0b0c0d0e0"}, BadKeyNumber},
        {{.KeyA = L"0a0b0c0d0e0fa"}, BadKeyNumber},
        {{.KeyB = L"0a0b0c0d0e0G", .Levels = {16, -1, -1}}, BadKeyNumber},
        {{.Levels = {16, -1, -1}}, BadSecurityNumber},
        {{.Levels = {-1, -2, -1}, .BX = 256}, BadSecurityNumber},
        {{.Levels = {-1, -1, 2000000000}}, BadSecurityNumber},
        {{.Conditions = 16}, BadSecurityNumber},
        {{.Conditions = -2}, BadSecurityNumber},
        {{.BX = 256}, BadBXNumber},
        {{.BX = -1}, BadBXNumber},
    };
    const std::map<int32_t, std::wstring> descriptions = {
        {BadKeyNumber, L"A key must contain 12 hex digits"},
        {BadSecurityNumber, L"Invalid security information in parameters"},
        {BadBXNumber, L"Incorrect value for BX"}};
    for (const auto& [arguments, number] : cases) {
        EXPECT_EQ(Write(arguments), sceError);
        EXPECT_EQ(Last(), (Record{number, descriptions.at(number), L"WriteSectorTrailer", L"", L"", 0}));
    }
    EXPECT_TRUE(reader.Calls.empty());
}

TEST_F(SectorTrailersTest, WritingReadsTheTrailerTwiceAndWritesItWhole)
{
    Open();
    EXPECT_EQ(Write({.Levels = {1, -1, 15}, .Conditions = 2, .BX = 0}), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"WriteSectorTrailer"));
    const std::string login = std::string(SelectCommands) + ", login 24BB************, ";
    EXPECT_EQ(reader.Commands(), login + "read block 9F, " + login + "read block 9F, " + login +
                                     "write block 9F************FF069000************");
    EXPECT_EQ(CommandCount(), 15);
    EXPECT_TRUE(reader.WasSent("write block", "9F0A0B0C0D0E0FFF0690001A1B1C1D1E1F"));
    EXPECT_TRUE(reader.WasSent("login", "24BBA1B2C3D4E5F6"));

    // Left out, byte 9 stays; a number is rounded by nobody here.
    reader.Forget();
    EXPECT_EQ(Write({.Sector = 1}), sceSuccess);
    EXPECT_TRUE(reader.WasSent("write block", "070A0B0C0D0E0FFF0780691A1B1C1D1E1F"));
}

TEST_F(SectorTrailersTest, LevelThatTheKeyModeRefusesIsFoundAfterTheReads)
{
    for (const Arguments& arguments :
         {Arguments{.KeysToUse = BothKeys, .Conditions = 2}, {.KeysToUse = 255, .Levels = {-1, 7, -1}}}) {
        Open();
        EXPECT_EQ(Write(arguments), sceError);
        EXPECT_EQ(Last().Number, -13);
        EXPECT_EQ(Last().RdrCommand, L"");
        EXPECT_EQ(CommandCount(), 10);
    }
}

TEST_F(SectorTrailersTest, FailureBelowKeepsItsCauseAndNamesEachLevel)
{
    struct Case {
        const char* Command;
        std::string Reply;
        Record Expected; ///< but for ComFunction
    };
    const std::string good = "000000000000FF078069FFFFFFFFFFFF";
    const std::string refused = ScriptedReader::Status('F');
    const std::string accepted = ScriptedReader::Status('L');
    const std::wstring exchange = L"EncoderCommand:SendCommandGetData:";
    struct Step {
        const char* Command;
        std::initializer_list<std::string> Replies;
        Record Expected;
    };
    for (const Step& row :
         {Step{"read block",
               {refused},
               {-5, L"Encoder command failed", L"", L"ReadDataBloc:" + exchange + L"read block", L"F"}},
          {"login",
           {accepted, ScriptedReader::Status('X')},
           {-7, L"Authentication failure", L"", L"ReadSectorTrailer:ReadDataBloc:" + exchange + L"login",
            L"X"}},
          {"select",
           {"04", "04", ScriptedReader::Status('N')},
           {-8, L"No card in encoder", L"", L"WriteDataBloc:SelectCardInRange", L""}},
          {"write block",
           {refused},
           {-5, L"Encoder command failed", L"", L"WriteDataBloc:" + exchange + L"write block", L"F"}}}) {
        Open();
        reader.Reply(row.Command, row.Replies);
        EXPECT_EQ(Write({}), sceError);
        Record expected = row.Expected;
        expected.ComFunction = L"WriteSectorTrailer";
        EXPECT_EQ(Last(), expected);
        for (const auto& [command, reply] :
             {std::pair("read block", good), {"login", accepted}, {"select", "04"}}) {
            reader.Reply(command, {reply});
        }
    }
    EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
    EXPECT_EQ(Write({}), sceError);
    EXPECT_EQ(Last(), (Record{-1, L"Encoder is closed", L"WriteSectorTrailer",
                              L"ReadDataBloc:SelectCardInRange:EncoderCommand", L"", 0}));
}

TEST_F(SectorTrailersTest, ReadingLeavesKeysUsedAndByte9AloneWhereItFails)
{
    const auto read = [this](sceReturnCode expected, const std::vector<int32_t>& outcome) {
        auto security0 = SCBS_SecurityLevelEnum{9};
        auto security1 = security0;
        auto security2 = security0;
        auto conditions = SCSS_SecurityLevelEnum{9};
        uint8_t keysUsed = 9;
        uint8_t bx = 9;
        EXPECT_EQ(
            encoder.ReadSectorTrailer(31, Key, 1, keysUsed, security0, security1, security2, conditions, bx),
            expected);
        EXPECT_EQ((std::vector<int32_t>{keysUsed, security0, security1, security2, conditions, bx}), outcome);
    };
    read(sceError, {9, 0, 0, 0, 0, 9});
    EXPECT_EQ(Last(), (Record{-1, L"Encoder is closed", L"ReadSectorTrailer",
                              L"ReadDataBloc:SelectCardInRange:EncoderCommand", L"", 0}));
    Open();
    read(sceSuccess, {1, 15, 15, 15, 3, 0x69});
    EXPECT_EQ(Last(), Clean(L"ReadSectorTrailer"));
    EXPECT_TRUE(reader.WasSent("read block", "7F"));
    // Byte 6 isn't looked at, and a pair that isn't hexadecimal counts as far as it goes.
    reader.Reply("read block", {"000000000000xx7788zz"});
    read(sceSuccess, {2, 13, 13, 13, 12, 0});
    reader.Reply("read block", {"000000000000004g0g1g"});
    read(sceSuccess, {1, 15, 15, 15, 1, 1});
}

} // namespace
} // namespace acg
