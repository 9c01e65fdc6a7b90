// One command and its reply, seen through the simplest operation that sends one.
#include "tests/ScriptedReader.h"

namespace acg
{

namespace
{

class CommandExchangeTest : public EncoderTest
{
protected:
    void ExpectSerialNumber(sceReturnCode code, const std::wstring& expected, const Record& record)
    {
        std::wstring serial = L"before";
        EXPECT_EQ(encoder.ReadSerialNumber(serial), code);
        EXPECT_EQ(serial, expected);
        EXPECT_EQ(Last(), record);
    }
};

TEST_F(CommandExchangeTest, FirstNulDecidesWhetherAReplyIsDataOrAStatusLetter)
{
    Open();
    const std::string digits(32, 'a');
    const std::pair<std::string, std::wstring> data[] = {
        {"04a1B2C3", L"04a1B2C3"},
        {"", L""},
        {std::string("\0F", 2), L""},
        {"F", L"F"},
        {std::string("4C\0", 3), L"4C"},
        {" \r\n", L" \r\n"},
        {digits + std::string("\0more", 5), std::wstring(32, L'a')}};
    for (const auto& [reply, text] : data) {
        reader.Reply("select", {reply});
        ExpectSerialNumber(sceSuccess, text, Clean(L"ReadSerialNumber"));
    }
    EXPECT_EQ(reader.Calls, std::vector<std::string>(std::size(data), "SendCommandGetData 34 select "));
    for (const std::string& refusal : {std::string("F\0", 2), std::string("F\0more", 6)}) {
        reader.Reply("select", {refusal});
        ExpectSerialNumber(sceError, L"",
                           {-5, L"Encoder command failed", L"ReadSerialNumber",
                            L"EncoderCommand:SendCommandGetData:select", L"F"});
    }
}

TEST_F(CommandExchangeTest, SerialNumberIsEmptyAfterEachFailure)
{
    ExpectSerialNumber(sceError, L"", {-1, L"Encoder is closed", L"ReadSerialNumber", L"EncoderCommand"});
    EXPECT_TRUE(reader.Calls.empty());
    Open();
    reader.Reply("select", {ScriptedReader::Status('N')});
    ExpectSerialNumber(sceError, L"", {-8, L"No card in encoder", L"ReadSerialNumber"});
    reader.Missing(ReaderFunction::SendCommandGetData);
    ExpectSerialNumber(
        sceError, L"",
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
