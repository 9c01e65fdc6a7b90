// The sector trailer operations on a scripted reader: what they refuse, what they send, what they decode.
#include "cards/AccessBits.h"
#include "tests/cards/CardTest.h"

namespace acg
{

namespace
{

using SectorTrailersTest = CardTest;

TEST_F(SectorTrailersTest, BadArgumentsAreRefusedInOrder)
{
    const auto expectRefused = [this](int32_t number, const std::wstring& description,
                                      const TrailerArguments& arguments) {
        EXPECT_EQ(WriteTrailer(encoder, Key, KeyTypeB, arguments), sceError);
        EXPECT_EQ(Last(), (Record{number, description, L"WriteSectorTrailer"}));
    };
    const std::wstring badKey = L"A key must contain 12 hex digits";
    const std::wstring badSecurity = L"Invalid security information in parameters";
    const std::wstring badBX = L"Incorrect value for BX";
    expectRefused(-12, badKey, {.KeyA = L"0a0b0c0d0e0"});
    expectRefused(-12, badKey, {.KeyA = L"0a0b0c0d0e0fa"});
    expectRefused(-12, badKey, {.KeyB = L"0a0b0c0d0e0"});
    expectRefused(-12, badKey, {.KeyB = L"0a0b0c0d0e0G", .Levels = {16, -1, -1, -1}});
    for (const Numbers& levels : {Numbers{16, -1, -1, -1},
                                  {-1, -2, -1, -1},
                                  {-1, -1, 2000000000, -1},
                                  {-1, -1, -1, 16},
                                  {-1, -1, -1, -2}}) {
        expectRefused(-13, badSecurity, {.Levels = levels, .BX = 256});
    }
    expectRefused(-15, badBX, {.BX = 256});
    expectRefused(-15, badBX, {.BX = -1});
    EXPECT_TRUE(reader.Calls.empty());

    // What the key mode refuses is known after two reads.
    Open();
    expectRefused(-13, badSecurity, {.KeysToUse = BothKeys, .Levels = {-1, -1, -1, 2}});
    expectRefused(-13, badSecurity, {.KeysToUse = 255, .Levels = {-1, 7, -1, -1}});
    EXPECT_EQ(reader.Calls.size(), 24U);
}

TEST_F(SectorTrailersTest, WhatIsKeptIsWhatTheCardAnsweredEvenNothing)
{
    reader.Replies["read block"] = "";
    Open();
    EXPECT_EQ(WriteTrailer(encoder, Key, KeyTypeB, {.KeysToUse = KeysAsOnCard}), sceSuccess);
    EXPECT_TRUE(reader.WasSent("write block", "07A0A1A2A3A4A500000000B0B1B2B3B4B5"));
    EXPECT_EQ(BlockTriple(HighestLevel + 1, BothKeys, /*IsValueBlock=*/false), RefusedLevel);
}

TEST_F(SectorTrailersTest, WritingReadsTheTrailerTwiceAndWritesItWhole)
{
    reader.Replies["read block"] = "000000000000FF078069FFFFFFFFFFFF";
    Open();
    const TrailerArguments arguments{
        .KeyA = L" 0a0b0c0d0e0f ", .Levels = {1, -1, 15, 2}, .BX = 0, .Sector = 33};
    EXPECT_EQ(WriteTrailer(encoder, Key, KeyTypeB, arguments), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"WriteSectorTrailer"));
    const std::string login = std::string(SelectCommands) + ", login 24BB************, ";
    const std::string read = login + "read block 9F, ";
    EXPECT_EQ(reader.Commands(), read + read + login + "write block 9F************FF069000************");
    EXPECT_TRUE(reader.WasSent("write block", "9F0A0B0C0D0E0FFF069000B0B1B2B3B4B5"));
    EXPECT_TRUE(reader.WasSent("login", "24BBA1B2C3D4E5F6"));
}

TEST_F(SectorTrailersTest, ReadingDecodesThePlainBitsAsFarAsTheyAreHexadecimal)
{
    Open();
    const std::pair<std::string, Numbers> cases[] = {
        {"000000000000FF078069FFFFFFFFFFFF", {sceSuccess, 1, 15, 15, 15, 3, 0x69}},
        {"000000000000xxA04Fzz", {sceSuccess, 2, 5, 13, 12, 0, 0}}, // 010, 110, 011, 110
        {"000000000000004g0g1g", {sceSuccess, 1, 15, 15, 15, 1, 1}}};
    for (const auto& [reply, levels] : cases) {
        reader.Replies["read block"] = reply;
        EXPECT_EQ(ReadTrailer(encoder, Key, 31), levels);
        EXPECT_EQ(Last(), Clean(L"ReadSectorTrailer"));
    }
    EXPECT_TRUE(reader.WasSent("read block", "7F"));
}

} // namespace
} // namespace acg
