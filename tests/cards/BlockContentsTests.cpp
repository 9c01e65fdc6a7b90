// Value blocks, byte ranges and the manufacturer block on a scripted reader.
#include "tests/ScriptedReader.h"

#include <climits>

namespace acg
{

namespace
{

const std::wstring Key = L"A1B2C3D4E5F6";
const std::wstring OldBlock = L"00112233445566778899aabbccddeeff";

class BlockContentsTest : public EncoderTest
{
protected:
    BlockContentsTest()
    {
        reader.Reply("read block", {"00112233445566778899aabbccddeeff"});
        reader.Reply("write block", {"44"});
        reader.Reply("write vblock", {""});
    }
};

TEST_F(BlockContentsTest, ValueGoesToTheReaderAsEightDigits)
{
    Open();
    const std::pair<int32_t, std::string> cases[] = {
        {0, "00000000"}, {255, "000000FF"}, {-1, "FFFFFFFF"}, {INT_MIN, "80000000"}, {INT_MAX, "7FFFFFFF"}};
    for (const auto& [value, digits] : cases) {
        EXPECT_EQ(encoder.WriteValueBloc(5, Key, 1, value), sceSuccess);
        EXPECT_TRUE(reader.WasSent("write vblock", "05" + digits)) << digits;
    }
    EXPECT_EQ(Last(), Clean(L"WriteValueBloc"));
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), std::vector<int32_t>(5, 5));
}

TEST_F(BlockContentsTest, ValueBlockIsListedWhateverBecomesOfTheCall)
{
    EXPECT_EQ(encoder.WriteValueBloc(5, Key, 1, 0), sceError);
    EXPECT_EQ(Last(), (Record{-1, L"Encoder is closed", L"WriteValueBloc",
                              L"SelectCardInRange:EncoderCommand", L"", 0}));
    EXPECT_FALSE(EncoderInside::ValueBlocks(encoder));

    Open();
    reader.Reply("write vblock", {ScriptedReader::Status('F')});
    EXPECT_EQ(encoder.WriteValueBloc(6, Key, 1, 0), sceError);
    EXPECT_EQ(Last(), (Record{-5, L"Encoder command failed", L"WriteValueBloc",
                              L"EncoderCommand:SendCommandGetData:write vblock", L"F", 0}));
    reader.Reply("login", {""});
    EXPECT_EQ(encoder.WriteValueBloc(-7, Key, 1, 0), sceError);
    EXPECT_EQ(Last(), (Record{-6, L"Encoder failure", L"WriteValueBloc", L"ReaderType", L"", 0}));
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), (std::vector<int32_t>{6, -7}));
}

TEST_F(BlockContentsTest, BytesArePutIntoTheOldBlock)
{
    Open();
    struct Case {
        uint8_t From;
        uint8_t To;
        std::wstring Bytes;
        std::string Sent;
    };
    for (const Case& row :
         {Case{4, 4, L"ab", "00112233AB5566778899AABBCCDDEEFF"},
          {0, 15, L"0123456789abcdef0123456789ABCDEF99", "0123456789ABCDEF0123456789ABCDEF"},
          {15, 15, L"01", "00112233445566778899AABBCCDDEE01"},
          {2, 3, L"AB", "0011AB00445566778899AABBCCDDEEFF"},
          {2, 2, L"ABCD", "0011AB33445566778899AABBCCDDEEFF"},
          {0, 1, L"", "00002233445566778899AABBCCDDEEFF"}}) {
        reader.Forget();
        std::wstring contents = row.Bytes;
        EXPECT_EQ(encoder.WriteBytesInBloc(9, Key, KeyTypeB, row.From, row.To, contents), sceSuccess);
        EXPECT_TRUE(reader.WasSent("write block", "09" + row.Sent)) << reader.Commands();
        EXPECT_EQ(contents, L"44" + std::wstring(30, L'0'));
        EXPECT_EQ(Last(), Clean(L"WriteBytesInBloc"));
    }
    const std::string login = std::string(SelectCommands) + ", login 02BB************, ";
    EXPECT_EQ(reader.Commands(),
              login + "read block 09, " + login + "write block 0900002233445566778899AABBCCDDEEFF");
}

TEST_F(BlockContentsTest, BytesThatCannotBePutInLeaveTheOldBlockOrNothing)
{
    const auto fails = [this](uint8_t from, uint8_t to, std::wstring bytes, const std::wstring& after,
                              Record expected) {
        EXPECT_EQ(encoder.WriteBytesInBloc(9, Key, 1, from, to, bytes), sceError);
        EXPECT_EQ(bytes, after);
        expected.ComFunction = L"WriteBytesInBloc";
        EXPECT_EQ(Last(), expected);
    };
    fails(3, 2, L"ab", L"",
          {-1, L"Encoder is closed", L"", L"ReadDataBloc:SelectCardInRange:EncoderCommand"});
    Open();
    for (const auto& [from, to] :
         std::initializer_list<std::pair<uint8_t, uint8_t>>{{3, 2}, {16, 16}, {0, 16}, {255, 0}}) {
        fails(from, to, L"ab", OldBlock, {-14, L"Incorrect offsets in parameters"});
    }
    fails(0, 0, L"0G", OldBlock, {-11, L"A data bloc must contain 32 hex digits", L"", L"WriteDataBloc"});
    reader.Reply("write block", {ScriptedReader::Status('F')});
    fails(0, 0, L"00", OldBlock,
          {-5, L"Encoder command failed", L"", L"WriteDataBloc:EncoderCommand:SendCommandGetData:write block",
           L"F"});
    reader.Reply("select", {ScriptedReader::Status('N')});
    fails(3, 2, L"ab", L"", {-8, L"No card in encoder", L"", L"ReadDataBloc:SelectCardInRange"});
}

TEST_F(BlockContentsTest, ManufacturerBlockIsCutIntoItsFields)
{
    const auto read = [this](sceReturnCode expected, int32_t number, int sum, const std::wstring& info) {
        int32_t serialNumber = 7;
        uint8_t checkSum = 7;
        std::wstring manufacturerInfo = L"before";
        EXPECT_EQ(encoder.ReadManufacturerCode(Key, KeyTypeB, serialNumber, checkSum, manufacturerInfo),
                  expected);
        EXPECT_EQ(serialNumber, number);
        EXPECT_EQ(checkSum, sum);
        EXPECT_EQ(manufacturerInfo, info);
    };
    read(sceError, 0, 0, L"");
    EXPECT_EQ(Last(), (Record{-1, L"Encoder is closed", L"ReadManufacturerCode",
                              L"ReadDataBloc:SelectCardInRange:EncoderCommand", L"", 0}));
    Open();
    struct Case {
        std::string Reply;
        int32_t SerialNumber;
        int CheckSum;
        std::wstring Info;
    };
    for (const Case& row :
         {Case{"12345678abCDef00112233445566778899", 305419896, 0xAB, L"CDef001122334455667788"},
          {"FFFFFFFF00", -1, 0, std::wstring(22, L'0')},
          {"80000000G1", INT_MIN, 0, std::wstring(22, L'0')},
          {"a1b2c3d41g", -1582119980, 1, std::wstring(22, L'0')},
          {"1 345678 1", 1, 0, std::wstring(22, L'0')}}) {
        reader.Reply("read block", {row.Reply});
        read(sceSuccess, row.SerialNumber, row.CheckSum, row.Info);
        EXPECT_EQ(Last(), Clean(L"ReadManufacturerCode"));
    }
    EXPECT_EQ(reader.Commands().substr(0, 75),
              std::string(SelectCommands) + ", login 00BB************, read block 00");
}

} // namespace
} // namespace acg
