#include "reader/HexText.h"

#include <gtest/gtest.h>

namespace acg
{

namespace
{

TEST(HexTextTest, TextComesBackUpperCasedAndTrimmedWhateverTheResult)
{
    const std::tuple<std::wstring, size_t, bool, std::wstring> cases[] = {
        {L" ab12 ", 4, true, L"AB12"},
        {L"ab1", 4, false, L"AB1"},
        {L"12 34", 5, false, L"12 34"},
        {L"\tab", 3, false, L"\tAB"},
        {L"ab\t", 3, false, L"AB\t"},
        {L"", 0, true, L""},
        {L"   ", 0, true, L""},
        {L"", 1, false, L""},
        {L"&h1", 3, false, L"&H1"},
        {L"fg", 2, false, L"FG"},
        {L"-1", 2, false, L"-1"},
        {L"\u00e9", 1, false, L"\u00c9"},
        {L"\u0436\u0192", 2, false, L"\u0416\u0191"}};
    for (const auto& [given, length, isHex, after] : cases) {
        std::wstring text = given;
        EXPECT_EQ(IsHexString(text, length), isHex) << testing::PrintToString(given);
        EXPECT_EQ(text, after);
    }
    std::wstring digits = L"0123456789abcdef";
    EXPECT_TRUE(IsHexString(digits, 16));
    EXPECT_EQ(digits, L"0123456789ABCDEF");
}

} // namespace
} // namespace acg
