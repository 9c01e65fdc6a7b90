// The card operations on a scripted reader: what they refuse, what they send, and what they make of a reply.
#include "acg/cards/AccessBits.h"
#include "tests/acg/cards/CardTest.h"

#include <climits>

using namespace acg;

namespace
{

/// What an operation does to the text that it is given; the operation succeeds.
struct Sent {
    std::function<sceReturnCode(Encoder&, std::wstring& text)> Run;
    std::wstring Given;
    std::string Commands; ///< "LOGIN 02BB read block 09": the selection and the key are left out
    std::wstring After;
};

const std::wstring Key = L"a1b2c3d4e5f6";
const std::wstring Block = L"00112233445566778899aabbccddeeff";

class CardOperationsTest : public EncoderTest
{
protected:
    CardOperationsTest()
    {
        for (const char* command : {"read block", "write block", "write vblock"}) {
            reader.Replies[command] = std::string(Block.begin(), Block.end());
        }
        Open();
    }

    void Expect(const Sent& expected)
    {
        reader.Forget();
        std::wstring text = expected.Given;
        EXPECT_EQ(expected.Run(encoder, text), sceSuccess);
        EXPECT_EQ(text, expected.After);
        EXPECT_EQ(Last().Number, 0);
        std::string commands = reader.Commands;
        const std::string login = std::string(SelectCommands) + ", login ";
        for (size_t at = 0; (at = commands.find(login)) != std::string::npos;) {
            commands.replace(at, login.size(), "LOGIN ");
        }
        EXPECT_EQ(commands, expected.Commands);
    }

    void ExpectRefused(const CError& expected, const std::function<sceReturnCode()>& run)
    {
        EXPECT_EQ(run(), sceError);
        EXPECT_EQ(Last(), expected);
    }
};

auto Read(int32_t block, uint8_t keyType)
{
    return [=](Encoder& e, std::wstring& text) { return e.ReadDataBloc(block, Key, keyType, text); };
}
auto Write(int32_t block, uint8_t keyType)
{
    return [=](Encoder& e, std::wstring& text) { return e.WriteDataBloc(block, Key, keyType, text); };
}
auto WriteBytes(uint8_t from, uint8_t to)
{
    return
        [=](Encoder& e, std::wstring& text) { return e.WriteBytesInBloc(9, Key, KeyTypeB, from, to, text); };
}
auto WriteValue(int32_t value)
{
    return [=](Encoder& e, std::wstring&) { return e.WriteValueBloc(5, Key, 1, value); };
}

TEST_F(CardOperationsTest, EachSelectsLogsInAndSendsItsCommand)
{
    const std::string readWrite = "LOGIN 02BB, read block 09, LOGIN 02BB, write block 09";
    const Sent rows[] = {
        {Read(9, KeyTypeB), L"not read", "LOGIN 02BB, read block 09", Block},
        {Write(200, /*keyType=*/0), L" " + Block + L" ",
         "LOGIN 30AA, write block C800112233445566778899AABBCCDDEEFF", Block},
        // Numbers beyond the card go out as their low byte.
        {Read(256, 255), L"", "LOGIN 40AA, read block 00", Block},
        {Read(-4, 3), L"", "LOGIN FFAA, read block FC", Block},
        {Read(INT_MAX, 1), L"", "LOGIN FCAA, read block FF", Block},
        {WriteValue(-1), L"", "LOGIN 01AA, write vblock 05FFFFFFFF", L""},
        {WriteValue(255), L"", "LOGIN 01AA, write vblock 05000000FF", L""},
        {WriteBytes(4, 4), L"ab", readWrite + "00112233AB5566778899AABBCCDDEEFF", Block},
        {WriteBytes(0, 15), L"0123456789abcdef0123456789ABCDEF99",
         readWrite + "0123456789ABCDEF0123456789ABCDEF", Block},
        {WriteBytes(2, 3), L"AB", readWrite + "0011AB00445566778899AABBCCDDEEFF", Block},
        {WriteBytes(15, 15), L"01ff", readWrite + "00112233445566778899AABBCCDDEE01", Block},
    };
    for (const Sent& row : rows) {
        SCOPED_TRACE(row.Commands);
        Expect(row);
    }
    EXPECT_TRUE(reader.Sent.contains("login 02BBA1B2C3D4E5F6"));
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), (std::vector<int32_t>{5, 5}));
    // The reader alone judges a key, whatever it is.
    for (const std::wstring& key :
         {std::wstring(L" zz"), std::wstring(100, L'a'), std::wstring(L"\u00e9\u0436")}) {
        std::wstring text;
        EXPECT_EQ(encoder.ReadDataBloc(0, key, 1, text), sceSuccess);
    }
    EXPECT_TRUE(reader.Sent.contains("login 00AA ZZ"));
    EXPECT_TRUE(reader.Sent.contains("login 00AA" + std::string(100, 'A')));
    EXPECT_TRUE(reader.Sent.contains("login 00AA\xc9?"));
}

TEST_F(CardOperationsTest, BadBlocksAndRangesAreRefused)
{
    const CError badBlock = {-11, L"A data bloc must contain 32 hex digits", 0, L"WriteDataBloc"};
    const std::wstring digits(31, L'0');
    for (const std::wstring& bad : {digits, digits + L"00", digits + L"G", std::wstring()}) {
        std::wstring text = L" " + bad;
        ExpectRefused(badBlock, [&] { return encoder.WriteDataBloc(1, Key, 1, text); });
        EXPECT_EQ(text, bad);
    }
    EXPECT_TRUE(reader.Calls.empty());

    const CError badRange = {-14, L"Incorrect offsets in parameters", 0, L"WriteBytesInBloc"};
    for (const auto& [from, to] :
         std::initializer_list<std::pair<uint8_t, uint8_t>>{{3, 2}, {16, 16}, {0, 16}}) {
        std::wstring text = L"ab";
        const auto write = WriteBytes(from, to);
        ExpectRefused(badRange, [&] { return write(encoder, text); });
        EXPECT_EQ(text, Block);
    }
    std::wstring text = L"0G";
    ExpectRefused({-11, badBlock.Description, 0, L"WriteBytesInBloc", L"WriteDataBloc"},
                  [&] { return WriteBytes(0, 0)(encoder, text); });
    EXPECT_EQ(text, Block);
}

TEST_F(CardOperationsTest, BadArgumentsOfATrailerAreRefusedInOrder)
{
    const auto expectRefused = [this](int32_t number, const wchar_t* description,
                                      const TrailerArguments& given) {
        ExpectRefused({number, description, 0, L"WriteSectorTrailer"},
                      [&] { return WriteTrailer(encoder, Key, KeyTypeB, given); });
    };
    const wchar_t* const badKey = L"A key must contain 12 hex digits";
    const wchar_t* const badSecurity = L"Invalid security information in parameters";
    for (const wchar_t* key : {L"0a0b0c0d0e0", L"0a0b0c0d0e0fa", L"0a0b0c0d0e0G", L"0a0b0c 0d0e0"}) {
        expectRefused(-12, badKey, {.KeyA = key, .Levels = {16, -1, -1, -1}});
        expectRefused(-12, badKey, {.KeyB = key});
    }
    for (const Numbers& levels :
         {Numbers{16, -1, -1, -1}, {-1, -2, -1, -1}, {-1, -1, 2000000000, -1}, {-1, -1, -1, 16}}) {
        expectRefused(-13, badSecurity, {.Levels = levels, .BX = 256});
    }
    expectRefused(-15, L"Incorrect value for BX", {.BX = 256});
    expectRefused(-15, L"Incorrect value for BX", {.BX = -1});
    EXPECT_TRUE(reader.Calls.empty());

    // What the key mode refuses is known after two reads.
    expectRefused(-13, badSecurity, {.KeysToUse = BothKeys, .Levels = {-1, -1, -1, 2}});
    expectRefused(-13, badSecurity, {.KeysToUse = 255, .Levels = {-1, 7, -1, -1}});
    EXPECT_EQ(reader.Calls.size(), 24U);
    EXPECT_EQ(BlockTriple(HighestLevel + 1, BothKeys, /*IsValueBlock=*/false), std::nullopt);
}

TEST_F(CardOperationsTest, TrailerIsWrittenWholeWithWhatTheReaderAnswered)
{
    const std::tuple<std::string, TrailerArguments, std::string> rows[] = {
        {"000000000000FF078069FFFFFFFFFFFF",
         {.KeyA = L" 0a0b0c0d0e0f ", .Levels = {1, -1, 15, 2}, .BX = 0, .Sector = 33},
         "9F0A0B0C0D0E0FFF069000B0B1B2B3B4B5"},
        {"", {.KeysToUse = KeysAsOnCard}, "07A0A1A2A3A4A500000000B0B1B2B3B4B5"}};
    for (const auto& [reply, given, written] : rows) {
        reader.Replies["read block"] = reply;
        EXPECT_EQ(WriteTrailer(encoder, Key, KeyTypeB, given), sceSuccess);
        EXPECT_EQ(Last(), Clean(L"WriteSectorTrailer"));
        EXPECT_TRUE(reader.Sent.contains("write block " + written));
    }
    // Read, the plain bits count, as far as they are hexadecimal; blanks in a pair are skipped.
    const std::pair<std::string, Numbers> read[] = {
        {"000000000000FF078069FFFFFFFFFFFF", {sceSuccess, 1, 15, 15, 15, 3, 0x69}},
        {"000000000000xxA04Fzz", {sceSuccess, 2, 5, 13, 12, 0, 0}}, // 010, 110, 011, 110
        {"000000000000004g0g 1", {sceSuccess, 1, 15, 15, 15, 1, 1}}};
    for (const auto& [reply, levels] : read) {
        reader.Replies["read block"] = reply;
        EXPECT_EQ(ReadTrailer(encoder, Key, 31), levels);
        EXPECT_EQ(Last(), Clean(L"ReadSectorTrailer"));
        EXPECT_EQ(encoder.LastReplyWasWhole(), reply.size() == 32);
    }
    EXPECT_TRUE(reader.Sent.contains("read block 7F"));
}

} // namespace
