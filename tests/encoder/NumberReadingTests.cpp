#include "encoder/NumberReading.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace acg
{

namespace
{

/// Each row: a text, an arrow, and the whole number that it is read as.
void ExpectReadAs(std::initializer_list<std::wstring> rows)
{
    const std::wstring arrow = L" -> ";
    for (const std::wstring& row : rows) {
        const size_t at = row.rfind(arrow);
        EXPECT_EQ(ReadWholeNumber(row.substr(0, at)), std::stoll(row.substr(at + arrow.size())))
            << testing::PrintToString(row);
    }
}

TEST(NumberReadingTest, ReadsWhatCanStandInANumberAndStops)
{
    ExpectReadAs({L" -> 0", L"abc -> 0", L"9600 bauds -> 9600", L"1 200 -> 1200", L"\t1\n2 .\t5 e 1 x -> 125",
                  L"1\r2 -> 1", L"1.4.9 -> 1", L". -> 0", L"5. -> 5", L"1,9 -> 1", L"1&H2 -> 1"});
}

TEST(NumberReadingTest, SignStandsBeforeTheNumberAndTheExponent)
{
    ExpectReadAs({L"-5 -> -5", L"+5 -> 5", L"- 5 -> -5", L"--5 -> 0", L"+-5 -> 0", L"- -> 0", L"5-3 -> 5",
                  L"1e3 -> 1000", L"1D+2 -> 100", L"19d-1 -> 2", L"1e -> 1", L"1e+ -> 1", L"1e2e3 -> 100",
                  L"e5 -> 0", L"0e99999999999 -> 0", L"1e-99999999999 -> 0"});
}

TEST(NumberReadingTest, OtherBasesAreWholeAndWithoutSign)
{
    ExpectReadAs({L"&HFF -> 255", L"&hfg -> 15", L"& H 1 0 -> 16", L"&o17 -> 15", L"&O18 -> 1", L"& -> 0",
                  L"&x1 -> 0", L"&h -> 0", L"-&H10 -> 0", L"&H-10 -> 0", L"&HFFFFFFFF -> 4294967295"});
}

TEST(NumberReadingTest, GoesToTheNearestWholeNumberAndHalvesToTheEvenOne)
{
    const std::wstring zeros(400, L'0');
    ExpectReadAs({L"2.5 -> 2", L"3.5 -> 4", L".5 -> 0", L"-1.5 -> -2", L"-2.5 -> -2", L"2.51 -> 3",
                  L"2.49 -> 2", L"25e-1 -> 2", L"0.35e1 -> 4", L"0.05e1 -> 0", L"9.5 -> 10", L"0.99 -> 1",
                  L"5e-2 -> 0", L"12010436.500000001 -> 12010437", L"2.5" + zeros + L" -> 2",
                  L"2.5" + zeros + L"1 -> 3", L"0." + zeros + L"1e401 -> 1", L"1" + zeros + L"e-400 -> 1"});
}

TEST(NumberReadingTest, NumberMustFitItsFieldAfterRounding)
{
    EXPECT_EQ(ReadField<uint8_t>(L"255.5"), std::nullopt);
    EXPECT_EQ(ReadField<uint8_t>(L"255.4"), 255);
    EXPECT_EQ(ReadField<uint8_t>(L"-0.5"), 0);
    EXPECT_EQ(ReadField<uint8_t>(L"-1"), std::nullopt);
    EXPECT_EQ(ReadField<int32_t>(L"-2147483648"), INT32_MIN);
    EXPECT_EQ(ReadField<int32_t>(L"&H7FFFFFFF"), INT32_MAX);
    for (const wchar_t* tooLarge : {L"2147483648", L"&H80000000", L"1e999", L"-1e99999999999999999999"}) {
        EXPECT_EQ(ReadField<int32_t>(tooLarge), std::nullopt);
    }
}

} // namespace
} // namespace acg
