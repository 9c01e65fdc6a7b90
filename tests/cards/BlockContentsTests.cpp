// Value blocks, byte ranges and the manufacturer block on a scripted reader.
#include "tests/cards/CardTest.h"

#include <climits>

namespace acg
{

namespace
{

using BlockContentsTest = CardTest;

TEST_F(BlockContentsTest, ValueGoesToTheReaderAsEightDigitsAndItsBlockIsListed)
{
    EXPECT_EQ(encoder.WriteValueBloc(5, Key, 1, 0), sceError);
    EXPECT_FALSE(EncoderInside::ValueBlocks(encoder)); // closed
    Open();
    const std::pair<int32_t, std::string> values[] = {
        {0, "00000000"}, {255, "000000FF"}, {-1, "FFFFFFFF"}, {INT_MIN, "80000000"}, {INT_MAX, "7FFFFFFF"}};
    for (const auto& [value, digits] : values) {
        EXPECT_EQ(encoder.WriteValueBloc(5, Key, 1, value), sceSuccess);
        EXPECT_TRUE(reader.WasSent("write vblock", "05" + digits)) << digits;
    }
    EXPECT_EQ(Last(), Clean(L"WriteValueBloc"));
    reader.Replies["login"] = "";
    EXPECT_EQ(encoder.WriteValueBloc(-7, Key, 1, 0), sceError);
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), (std::vector<int32_t>{5, 5, 5, 5, 5, -7}));
}

TEST_F(BlockContentsTest, BytesArePutIntoTheBlock)
{
    Open();
    const std::tuple<uint8_t, uint8_t, std::wstring, std::string> ranges[] = {
        {4, 4, L"ab", "00112233AB5566778899AABBCCDDEEFF"},
        {0, 15, L"0123456789abcdef0123456789ABCDEF99", "0123456789ABCDEF0123456789ABCDEF"},
        {15, 15, L"01", "00112233445566778899AABBCCDDEE01"},
        {2, 3, L"AB", "0011AB00445566778899AABBCCDDEEFF"},
        {2, 2, L"ABCD", "0011AB33445566778899AABBCCDDEEFF"},
        {0, 1, L"", "00002233445566778899AABBCCDDEEFF"}};
    reader.Replies["write block"] = "44";
    const std::string login = std::string(SelectCommands) + ", login 02BB************, ";
    const std::string commands = login + "read block 09, " + login + "write block 09";
    for (const auto& [from, to, bytes, sent] : ranges) {
        reader.Forget();
        std::wstring contents = bytes;
        EXPECT_EQ(encoder.WriteBytesInBloc(9, Key, KeyTypeB, from, to, contents), sceSuccess);
        EXPECT_EQ(reader.Commands(), commands + sent);
        EXPECT_EQ(contents, L"44" + std::wstring(30, L'0'));
        EXPECT_EQ(Last(), Clean(L"WriteBytesInBloc"));
    }
}

TEST_F(BlockContentsTest, BytesThatCannotBePutInLeaveTheBlock)
{
    Open();
    const auto fails = [this](uint8_t from, uint8_t to, std::wstring bytes, Record expected) {
        EXPECT_EQ(encoder.WriteBytesInBloc(9, Key, 1, from, to, bytes), sceError);
        EXPECT_EQ(bytes, Block);
        expected.ComFunction = L"WriteBytesInBloc";
        EXPECT_EQ(Last(), expected);
    };
    const std::pair<uint8_t, uint8_t> badRanges[] = {{3, 2}, {16, 16}, {0, 16}, {255, 0}};
    for (const auto& [from, to] : badRanges) {
        fails(from, to, L"ab", {-14, L"Incorrect offsets in parameters"});
    }
    fails(0, 0, L"0G", {-11, L"A data bloc must contain 32 hex digits", L"", L"WriteDataBloc"});
}

TEST_F(BlockContentsTest, ManufacturerBlockIsCutIntoItsFields)
{
    Open();
    const std::wstring zeros(22, L'0');
    const std::tuple<std::string, int32_t, int, std::wstring> blocks[] = {
        {"12345678abCDef00112233445566778899", 305419896, 0xAB, L"CDef001122334455667788"},
        {"FFFFFFFF00", -1, 0, zeros},
        {"a1b2c3d41g", -1582119980, 1, zeros},
        {"1 345678G1", 1, 0, zeros}};
    for (const auto& [reply, number, sum, information] : blocks) {
        reader.Forget();
        reader.Replies["read block"] = reply;
        int32_t serialNumber = 7;
        uint8_t checkSum = 7;
        std::wstring manufacturerInfo;
        EXPECT_EQ(encoder.ReadManufacturerCode(Key, KeyTypeB, serialNumber, checkSum, manufacturerInfo),
                  sceSuccess);
        EXPECT_EQ(std::tie(serialNumber, checkSum, manufacturerInfo), std::tie(number, sum, information));
        EXPECT_EQ(Last(), Clean(L"ReadManufacturerCode"));
        EXPECT_EQ(reader.Commands(), std::string(SelectCommands) + ", login 00BB************, read block 00");
    }
}

} // namespace
} // namespace acg
