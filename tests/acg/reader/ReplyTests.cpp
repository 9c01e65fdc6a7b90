// What the component makes of a reply, seen through the simplest operation that gets one.
#include "acg/platform/AnsiText.h"
#include "tests/ScriptedReader.h"

using namespace acg;

namespace
{

TEST_F(EncoderTest, FirstNulDecidesWhetherAReplyIsDataOrAStatusLetter)
{
    Open();
    const std::pair<std::string, std::wstring> data[] = {{std::string("\0F", 2), L""},
                                                         {"F", L"F"},
                                                         {std::string("4C\0", 3), L"4C"},
                                                         {" \r\xe9", L" \r\u00e9"},
                                                         {std::string(600, 'a'), std::wstring(600, L'a')}};
    std::wstring serial;
    for (const auto& [reply, text] : data) {
        reader.Replies["select"] = reply;
        EXPECT_EQ(encoder.ReadSerialNumber(serial), sceSuccess);
        EXPECT_EQ(serial, text);
    }
    for (const auto& [reply, letter] : {std::pair("F\0more", L"F"), {"\x80\0more", L"\u20ac"}}) {
        reader.Replies["select"] = std::string(reply, 6);
        EXPECT_EQ(encoder.ReadSerialNumber(serial), sceError);
        EXPECT_EQ(Last().RdrRetCode, letter);
    }
}

TEST(AnsiTextTest, IsWindows1252WhereNoSystemDecides)
{
    EXPECT_EQ(ToAnsi(L"caf\u00e9 \u20ac\u0153\u0178\u0081 \u0394"), "caf\xe9 \x80\x9c\x9f\x81 ?");
    for (int code = 0; code < 256; ++code) {
        const std::string ansi(1, static_cast<char>(code));
        EXPECT_EQ(ToAnsi(FromAnsi(ansi)), ansi) << code;
    }
}

} // namespace
