// The card's own rules; those of each access condition are held against the component's trailer codec.
#include "simulator/Card.h"

#include <gtest/gtest.h>

namespace simulator
{

namespace
{

constexpr std::array<uint8_t, KeySize> FactoryKey = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
constexpr Block OpenTrailer = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x07, 0x80};
constexpr Block HiddenKeyBTrailer = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0x07,
                                     0x88, 0x69, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

TEST(SimulatedCardTest, KeyBThatCanBeReadLogsInAndIsRefusedEverything)
{
    Card card(BlocksOf1K, {});
    for (const bool readable : {true, false}) {
        EXPECT_TRUE(card.Login(1, KeyType::B, FactoryKey));
        EXPECT_EQ(card.Read(4, KeyType::B).has_value(), !readable);
        EXPECT_EQ(card.Read(7, KeyType::B).has_value(), !readable);
        EXPECT_EQ(card.Write(4, KeyType::B, {}).has_value(), !readable);
        EXPECT_EQ(card.Write(7, KeyType::A, HiddenKeyBTrailer).has_value(), readable);
    }
}

TEST(SimulatedCardTest, EachBitThatDisagreesWithItsCopyBlocksTheSectorAndNoOther)
{
    for (unsigned bit = 0; bit < 24; ++bit) {
        Card card(BlocksOf1K, {});
        Block trailer = OpenTrailer;
        trailer[6 + bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
        ASSERT_TRUE(card.Write(7, KeyType::A, trailer));
        EXPECT_FALSE(card.Login(1, KeyType::A, FactoryKey)) << bit;
        EXPECT_FALSE(card.Read(4, KeyType::A)) << bit;
        EXPECT_FALSE(card.Write(7, KeyType::A, OpenTrailer)) << bit;
        EXPECT_TRUE(card.Login(2, KeyType::A, FactoryKey)) << bit;
    }
}

} // namespace
} // namespace simulator
