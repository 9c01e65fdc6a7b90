#include "cards/BlockAddress.h"
#include "reader/HexText.h"

#include <gtest/gtest.h>

#include <climits>

namespace acg
{

namespace
{

TEST(BlockAddressTest, LoginSectorIsTheFirstBlockOfTheSectorByFour)
{
    for (int32_t block = 0; block < 256; ++block) {
        const int32_t first = block < 128 ? block - block % 4 : block - block % 16;
        EXPECT_EQ(LoginSector(block), first / 4) << block;
    }
}

TEST(BlockAddressTest, NumbersBeyondTheCardGoOnAsTheirLowByte)
{
    struct Case {
        int32_t Block;
        std::wstring_view LoginSector;
        std::wstring_view Block2;
    };
    for (const Case& row : {Case{9, L"02", L"09"},
                            {127, L"1F", L"7F"},
                            {128, L"20", L"80"},
                            {200, L"30", L"C8"},
                            {255, L"3C", L"FF"},
                            {256, L"40", L"00"},
                            {-1, L"00", L"FF"},
                            {-4, L"FF", L"FC"},
                            {INT_MAX, L"FC", L"FF"},
                            {INT_MIN, L"00", L"00"}}) {
        EXPECT_EQ(TwoHexDigits(LoginSector(row.Block)), row.LoginSector) << row.Block;
        EXPECT_EQ(TwoHexDigits(row.Block), row.Block2) << row.Block;
    }
}

} // namespace
} // namespace acg
