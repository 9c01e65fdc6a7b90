// One command and its reply, seen through the simplest operation that sends one.
#include "tests/ScriptedReader.h"

namespace acg
{

namespace
{

using CommandExchangeTest = EncoderTest;

TEST_F(CommandExchangeTest, FirstNulDecidesWhetherAReplyIsDataOrAStatusLetter)
{
    Open();
    struct Case {
        std::string Reply;
        std::wstring Data; ///< or the letter, where Refused
        bool Refused;
    };
    const std::string digits(32, 'a');
    const Case cases[] = {
        {"04a1B2C3", L"04a1B2C3", false},
        {"", L"", false},
        {std::string("\0F", 2), L"", false},
        {"F", L"F", false},
        {std::string("F\0", 2), L"F", true},
        {std::string("F\0more", 6), L"F", true},
        {std::string("4C\0", 3), L"4C", false},
        {digits + std::string("\0more", 5), std::wstring(32, L'a'), false},
        {" \r\n", L" \r\n", false},
    };
    for (const Case& row : cases) {
        reader.Reply("select", {row.Reply});
        std::wstring serial = L"before";
        EXPECT_EQ(encoder.ReadSerialNumber(serial), row.Refused ? sceError : sceSuccess);
        EXPECT_EQ(serial, row.Refused ? L"" : row.Data);
        EXPECT_EQ(Last(), row.Refused ? (Record{-5, L"Encoder command failed", L"ReadSerialNumber",
                                                L"EncoderCommand:SendCommandGetData:select", row.Data, 0})
                                      : Clean(L"ReadSerialNumber"));
    }
    EXPECT_EQ(reader.Calls.front(), "SendCommandGetData 34 select ");
    EXPECT_EQ(reader.Calls.size(), std::size(cases));
}

TEST_F(CommandExchangeTest, SerialNumberIsEmptyAfterEachFailure)
{
    const auto expectFailed = [this](const Record& expected) {
        std::wstring serial = L"before";
        EXPECT_EQ(encoder.ReadSerialNumber(serial), sceError);
        EXPECT_EQ(serial, L"");
        EXPECT_EQ(Last(), expected);
    };
    expectFailed({-1, L"Encoder is closed", L"ReadSerialNumber", L"EncoderCommand", L"", 0});
    EXPECT_TRUE(reader.Calls.empty());
    Open();
    reader.Reply("select", {ScriptedReader::Status('N')});
    expectFailed({-8, L"No card in encoder", L"ReadSerialNumber", L"", L"", 0});
    reader.Missing(ReaderFunction::SendCommandGetData);
    expectFailed(
        CallFailed(L"SendCommandGetData", L"ReadSerialNumber", L"EncoderCommand:SendCommandGetData:select"));
}

TEST_F(CommandExchangeTest, SelectionIgnoresWhatComesOfItsFirstTwoCommands)
{
    Open();
    reader.Reply("use iso14443a", {ScriptedReader::Status('?')});
    reader.Missing(ReaderFunction::SendCommandGetData, /*FromCall=*/2, /*Times=*/1);
    reader.Type = "Other";
    EXPECT_EQ(encoder.EncoderState(), sceReady);
    EXPECT_EQ(reader.Commands(), "use iso14443a , select ");
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"other");
}

} // namespace
} // namespace acg
