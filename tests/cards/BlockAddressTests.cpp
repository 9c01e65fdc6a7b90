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
        EXPECT_EQ(LoginSector(block), (block - block % (block < 128 ? 4 : 16)) / 4) << block;
    }
}

TEST(BlockAddressTest, NumbersBeyondTheCardGoOnAsTheirLowByte)
{
    const std::tuple<int32_t, std::wstring_view, std::wstring_view> cases[] = {
        {9, L"02", L"09"},  {200, L"30", L"C8"}, {255, L"3C", L"FF"},     {256, L"40", L"00"},
        {-1, L"00", L"FF"}, {-4, L"FF", L"FC"},  {INT_MAX, L"FC", L"FF"}, {INT_MIN, L"00", L"00"}};
    for (const auto& [block, loginDigits, blockDigits] : cases) {
        EXPECT_EQ(TwoHexDigits(LoginSector(block)), loginDigits) << block;
        EXPECT_EQ(TwoHexDigits(block), blockDigits) << block;
    }
}

} // namespace
} // namespace acg
