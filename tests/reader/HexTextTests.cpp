#include "reader/HexText.h"

#include <gtest/gtest.h>

namespace acg
{

namespace
{

TEST(HexTextTest, TextComesBackUpperCasedAndTrimmedWhateverTheResult)
{
    struct Case {
        std::wstring Text;
        int32_t Length;
        bool IsHex;
        std::wstring After;
    };
    const Case cases[] = {
        {L" ab12 ", 4, true, L"AB12"},
        {L"ab1", 4, false, L"AB1"},
        {L"12 34", 5, false, L"12 34"},
        {L"\tab", 3, false, L"\tAB"},
        {L"", AnyLength, true, L""},
        {L"   ", 0, true, L""},
        {L"", 1, false, L""},
        {L"&h1", 3, false, L"&H1"},
        {L"abcdefg", AnyLength, false, L"ABCDEFG"},
        {L"0123456789abcdef", AnyLength, true, L"0123456789ABCDEF"},
        {L"-1", 2, false, L"-1"},
        {L"\u00e9", 1, false, L"\u00c9"},
        {L"ab", -2, false, L"AB"},
    };
    for (const Case& row : cases) {
        std::wstring text = row.Text;
        EXPECT_EQ(IsHexString(text, row.Length), row.IsHex) << testing::PrintToString(row.Text);
        EXPECT_EQ(text, row.After);
    }
}

} // namespace
} // namespace acg
