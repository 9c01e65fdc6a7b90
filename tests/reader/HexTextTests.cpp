#include "reader/HexText.h"

#include <gtest/gtest.h>

namespace acg
{

namespace
{

TEST(HexTextTest, TextComesBackUpperCasedAndTrimmedWhateverTheResult)
{
    const std::tuple<std::wstring, int32_t, bool, std::wstring> cases[] = {
        {L" ab12 ", 4, true, L"AB12"},    {L"ab1", 4, false, L"AB1"},   {L"12 34", 5, false, L"12 34"},
        {L"\tab", 3, false, L"\tAB"},     {L"ab\t", 3, false, L"AB\t"}, {L"", AnyLength, true, L""},
        {L"   ", 0, true, L""},           {L"", 1, false, L""},         {L"&h1", 3, false, L"&H1"},
        {L"fg", AnyLength, false, L"FG"}, {L"-1", 2, false, L"-1"},     {L"\u00e9", 1, false, L"\u00c9"},
        {L"ab", -2, false, L"AB"}};
    for (const auto& [given, length, isHex, after] : cases) {
        std::wstring text = given;
        EXPECT_EQ(IsHexString(text, length), isHex) << testing::PrintToString(given);
        EXPECT_EQ(text, after);
    }
    std::wstring digits = L"0123456789abcdef";
    EXPECT_TRUE(IsHexString(digits, AnyLength));
    EXPECT_EQ(digits, L"0123456789ABCDEF");
}

} // namespace
} // namespace acg
