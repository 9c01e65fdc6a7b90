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
    const std::string digits(32, 'a');
    const std::pair<std::string, std::wstring> data[] = {
        {std::string("\0F", 2), L""},
        {"F", L"F"},
        {std::string("4C\0", 3), L"4C"},
        {" \r\n", L" \r\n"},
        {digits + std::string("\0more", 5), std::wstring(32, L'a')}};
    std::wstring serial;
    for (const auto& [reply, text] : data) {
        reader.Replies["select"] = reply;
        EXPECT_EQ(encoder.ReadSerialNumber(serial), sceSuccess);
        EXPECT_EQ(serial, text);
    }
    EXPECT_EQ(reader.Calls, std::vector<std::string>(std::size(data), "SendCommandGetData 34 select "));
    reader.Replies["select"] = std::string("F\0more", 6);
    EXPECT_EQ(encoder.ReadSerialNumber(serial), sceError);
    EXPECT_EQ(Last().RdrRetCode, L"F");
}

} // namespace
} // namespace acg
