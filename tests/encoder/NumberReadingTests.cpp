#include "encoder/NumberReading.h"

#include <gtest/gtest.h>

#include <sstream>

namespace acg
{

namespace
{

TEST(NumberReadingTest, ReadsWhatCanStandInANumberAndRoundsToTheNearestOrEven)
{
    const std::wstring zeros(400, L'0');
    std::wistringstream rows(
        L"=0|abc=0|9600 bauds=9600|\t1\n2 .\t5 e 1 x=125|1\r2=1|1.4.9=1|1&H2=1|- "
        L"5=-5|+5=5|--5=0|5-3=5|1D+2=100|"
        L"19d-1=2|1e+=1|1e2e3=100|0e99999999999=0|1e-99999999999=0|& H 1 0=16|&hfg=15|&O18=1|&x1=0|-&H10=0|"
        L"&HFFFFFFFF=4294967295|2.5=2|3.5=4|-1.5=-2|2.51=3|2.49=2|0.35e1=4|0.05e1=0|9.5=10|5e-2=0|"
        L"12010436.500000001=12010437|2.5" +
        zeros + L"1=3|0." + zeros + L"1e401=1|1" + zeros + L"e-400=1");
    for (std::wstring row; std::getline(rows, row, L'|');) {
        const size_t sign = row.find(L'=');
        EXPECT_EQ(ReadWholeNumber(row.substr(0, sign)), std::stoll(row.substr(sign + 1)))
            << testing::PrintToString(row);
    }
    for (const wchar_t* tooLarge : {L"2147483648", L"&H80000000", L"1e999", L"-1e99999999999999999999"}) {
        EXPECT_EQ(ReadField<int32_t>(tooLarge), std::nullopt);
    }
    EXPECT_EQ(ReadField<uint8_t>(L"255.5"), std::nullopt);
    EXPECT_EQ(ReadField<int32_t>(DecimalText(INT32_MIN)), INT32_MIN);
}

} // namespace
} // namespace acg
