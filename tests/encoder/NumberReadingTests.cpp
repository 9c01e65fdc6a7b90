#include "encoder/NumberReading.h"

#include <gtest/gtest.h>

#include <string>

namespace acg
{

namespace
{

TEST(NumberReadingTest, ReadsWhatCanStandInANumberAndStops)
{
    struct Case {
        std::wstring_view Text;
        double Number;
    };
    const Case cases[] = {
        {L"", 0},
        {L"abc", 0},
        {L"9600 bauds", 9600},
        {L"1 200", 1200},
        {L"\t1\n2 .\t5 e 1 x", 125},
        {L"1\r2", 1},
        {L"1.5.9", 1.5},
        {L".5", 0.5},
        {L".", 0},
        {L"5.", 5},
        {L"1,5", 1},
        // a sign, in front of the number and of the exponent
        {L"-5", -5},
        {L"+5", 5},
        {L"- 5", -5},
        {L"--5", 0},
        {L"-", 0},
        {L"5-3", 5},
        // exponents
        {L"1e3", 1000},
        {L"1D3", 1000},
        {L"25E-1", 2.5},
        {L"1d+2", 100},
        {L"1e", 1},
        {L"1e+", 1},
        {L"1e2e3", 100},
        {L"e5", 0},
        {L"0e99999999999", 0},
        {L"1e-99999999999", 0},
        // other bases, never with a sign
        {L"&HFF", 255},
        {L"&hfg", 15},
        {L"& H 1 0", 16},
        {L"&o17", 15},
        {L"&O18", 1},
        {L"&", 0},
        {L"&x1", 0},
        {L"&h", 0},
        {L"-&H10", 0},
        {L"&H-10", 0},
        {L"&HFFFFFFFF", 4294967295.0},
        {L"1&H2", 1},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(ReadNumber(row.Text), row.Number) << testing::PrintToString(std::wstring(row.Text));
    }
}

TEST(NumberReadingTest, KeepsThePlaceOfDigitsThatItCannotHold)
{
    const std::wstring zeros(400, L'0');
    EXPECT_EQ(ReadNumber(L"1." + zeros), 1);
    EXPECT_EQ(ReadNumber(L"0." + zeros + L"1e401"), 1);
    EXPECT_EQ(ReadNumber(L"1" + zeros + L"e-400"), 1);
    EXPECT_FALSE(ReadField<int32_t>(L"1" + zeros));
}

TEST(NumberReadingTest, HalvesGoToTheEvenNeighbour)
{
    struct Case {
        double Number;
        int32_t Whole;
    };
    for (const Case& row : {Case{2.5, 2},
                            {3.5, 4},
                            {0.5, 0},
                            {-0.5, 0},
                            {-1.5, -2},
                            {-2.5, -2},
                            {2.51, 3},
                            {2.49, 2},
                            {-2.51, -3}}) {
        EXPECT_EQ(ToWholeNumber(row.Number, -10, 10), row.Whole) << row.Number;
    }
}

TEST(NumberReadingTest, NumberMustFitItsFieldAfterRounding)
{
    EXPECT_EQ(ReadField<uint8_t>(L"255.5"), std::nullopt);
    EXPECT_EQ(ReadField<uint8_t>(L"255.4"), 255);
    EXPECT_EQ(ReadField<uint8_t>(L"-0.5"), 0);
    EXPECT_EQ(ReadField<uint8_t>(L"-1"), std::nullopt);
    EXPECT_EQ(ReadField<int32_t>(L"2147483647"), INT32_MAX);
    EXPECT_EQ(ReadField<int32_t>(L"2147483648"), std::nullopt);
    EXPECT_EQ(ReadField<int32_t>(L"-2147483648"), INT32_MIN);
    EXPECT_EQ(ReadField<int32_t>(L"&H7FFFFFFF"), INT32_MAX);
    EXPECT_EQ(ReadField<int32_t>(L"&H80000000"), std::nullopt);
    EXPECT_EQ(ReadField<int32_t>(L"1e999"), std::nullopt);
}

} // namespace
} // namespace acg
