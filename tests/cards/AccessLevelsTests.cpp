// The access levels against the simulated card: what a level promises, what the card then allows, and what
// the level reads back as.
#include "cards/AccessBits.h"
#include "encoder/Encoder.h"

#include <gtest/gtest.h>

namespace acg
{

namespace
{

const std::wstring FactoryKey = L"FFFFFFFFFFFF";
const std::wstring KeyA = L"A0A1A2A3A4A5";
const std::wstring KeyB = L"B0B1B2B3B4B5";
const std::wstring OtherKeyA = L"C0C1C2C3C4C5";
const std::wstring OtherKeyB = L"D0D1D2D3D4D5";
const std::wstring Data(32, L'1');

// Levels as numbers. Bit 0: key A reads (on the trailer: writes keys), bit 1: key A writes (conditions), bits
// 2 and 3 the same for key B.
constexpr int32_t No = -2; ///< refused

/// A level asked for, and what comes of it: the rights that the card then grants, and what it reads back as.
struct Level {
    int32_t Asked;
    int32_t GrantedToA; ///< where the sector works with key A alone
    int32_t ReadBackOfA;
    int32_t Granted; ///< where it works with both keys
    int32_t ReadBack;
};

// Key B's part doesn't count where key A works alone. Writing is never granted without reading.
constexpr Level BlockLevels[] = {
    //    key A alone, both keys
    {0, 0, 0, 0, 0},    {1, 1, 5, No, No},  {2, 3, 15, No, No},  {3, 3, 15, No, No},
    {4, 0, 0, 4, 4},    {5, 1, 5, 5, 5},    {6, 3, 15, No, No},  {7, 3, 15, No, No},
    {8, 0, 0, 12, 12},  {9, 1, 5, 13, 13},  {10, 3, 15, 15, 15}, {11, 3, 15, 15, 15},
    {12, 0, 0, 12, 12}, {13, 1, 5, 13, 13}, {14, 3, 15, 15, 15}, {15, 3, 15, 15, 15},
};

// Key A never writes the conditions without the keys.
constexpr Level TrailerLevels[] = {
    {0, 0, 0, 0, 0},    {1, 1, 1, No, No},  {2, 3, 3, No, No},  {3, 3, 3, No, No},
    {4, 0, 0, 4, 4},    {5, 1, 1, No, No},  {6, 3, 3, No, No},  {7, 3, 3, No, No},
    {8, 0, 0, 8, 8},    {9, 1, 1, No, No},  {10, 3, 3, No, No}, {11, 3, 3, No, No},
    {12, 0, 0, 12, 12}, {13, 1, 1, No, No}, {14, 3, 3, No, No}, {15, 3, 3, No, No},
};

/// An encoder on the simulated reader, with a factory-fresh 4K card.
class AccessLevelsTest : public testing::Test
{
protected:
    Encoder encoder;

    void LayCard()
    {
        static int32_t serialNumber = 0x5000;
        encoder.Parameters(L"Device=com1,card=4k,uid=" + Digits(++serialNumber));
        encoder.ReOpenEncoder();
        ASSERT_EQ(encoder.EncoderState(), sceReady);
    }

    static std::wstring Digits(int32_t number)
    {
        const std::string digits = std::to_string(number + 10000000);
        return {digits.begin(), digits.end()};
    }

    sceReturnCode Rekey(int32_t sector, uint8_t keysToUse, int32_t block, int32_t conditions,
                        const std::wstring& key = FactoryKey, uint8_t keyType = KeyTypeA)
    {
        const auto level = static_cast<SCBS_SecurityLevelEnum>(block);
        return encoder.WriteSectorTrailer(sector, key, keyType, KeyA, KeyB, keysToUse, level, level, level,
                                          static_cast<SCSS_SecurityLevelEnum>(conditions));
    }

    struct Trailer {
        uint8_t KeysUsed = 0;
        SCBS_SecurityLevelEnum Security[3] = {};
        SCSS_SecurityLevelEnum Conditions{};
        uint8_t BX = 0;
    };
    Trailer ReadTrailer(int32_t sector, const std::wstring& keyA)
    {
        Trailer trailer;
        EXPECT_EQ(encoder.ReadSectorTrailer(sector, keyA, KeyTypeA, trailer.KeysUsed, trailer.Security[0],
                                            trailer.Security[1], trailer.Security[2], trailer.Conditions,
                                            trailer.BX),
                  sceSuccess);
        return trailer;
    }

    bool Reads(int32_t block, const std::wstring& key, uint8_t keyType)
    {
        std::wstring contents;
        return encoder.ReadDataBloc(block, key, keyType, contents) == sceSuccess;
    }
    bool Writes(int32_t block, const std::wstring& key, uint8_t keyType, std::wstring contents = Data)
    {
        return encoder.WriteDataBloc(block, key, keyType, contents) == sceSuccess;
    }

    /// The rights that the card grants on a data block.
    int32_t BlockRights(int32_t block)
    {
        return (Reads(block, KeyA, KeyTypeA) ? 1 : 0) + (Writes(block, KeyA, KeyTypeA) ? 2 : 0) +
               (Reads(block, KeyB, KeyTypeB) ? 4 : 0) + (Writes(block, KeyB, KeyTypeB) ? 8 : 0);
    }

    /// What one key changes in the trailer of sector 1, bit 0 keys and bit 1 conditions, by writing all of
    /// it.
    int32_t TrailerRights(uint8_t keyType)
    {
        static_cast<void>(
            Writes(7, keyType == KeyTypeB ? KeyB : KeyA, keyType, OtherKeyA + L"7F078855" + OtherKeyB));
        const bool keys = Reads(7, OtherKeyA, KeyTypeA);
        const bool conditions = ReadTrailer(1, keys ? OtherKeyA : KeyA).BX == 0x55;
        return (keys ? 1 : 0) + (conditions ? 2 : 0);
    }

    std::wstring TrailerText(int32_t block, const std::wstring& keyA)
    {
        std::wstring contents;
        EXPECT_EQ(encoder.ReadDataBloc(block, keyA, KeyTypeA, contents), sceSuccess);
        return contents;
    }
};

TEST_F(AccessLevelsTest, DataBlockGrantsWhatItsLevelSays)
{
    for (const Level& row : BlockLevels) {
        for (const uint8_t keysToUse : {KeyAAlone, BothKeys}) {
            SCOPED_TRACE("level " + std::to_string(row.Asked) + ", keys " + std::to_string(keysToUse));
            LayCard();
            const bool alone = keysToUse == KeyAAlone;
            const int32_t granted = alone ? row.GrantedToA : row.Granted;
            const int32_t conditions =
                alone ? int32_t{scss_A_WriteKeysConditions} : int32_t{scss_B_WriteKeysConditions};
            ASSERT_EQ(Rekey(1, keysToUse, row.Asked, conditions), granted == No ? sceError : sceSuccess);
            if (granted == No) {
                EXPECT_EQ(encoder.LastError()->Number, -13);
                EXPECT_TRUE(Writes(4, FactoryKey, KeyTypeA)); // the card hasn't changed
                continue;
            }
            const Trailer trailer = ReadTrailer(1, KeyA);
            EXPECT_EQ(trailer.KeysUsed, keysToUse);
            for (const int32_t slot : {0, 1, 2}) {
                EXPECT_EQ(BlockRights(4 + slot), granted);
                EXPECT_EQ(trailer.Security[slot], alone ? row.ReadBackOfA : row.ReadBack);
            }
        }
    }
}

TEST_F(AccessLevelsTest, TrailerGrantsWhatItsLevelSays)
{
    for (const Level& row : TrailerLevels) {
        for (const uint8_t keysToUse : {KeyAAlone, BothKeys}) {
            const int32_t granted = keysToUse == KeyAAlone ? row.GrantedToA : row.Granted;
            int32_t rights = 0;
            for (const uint8_t keyType : {KeyTypeA, KeyTypeB}) {
                SCOPED_TRACE("level " + std::to_string(row.Asked) + ", keys " + std::to_string(keysToUse));
                LayCard();
                ASSERT_EQ(Rekey(1, keysToUse, 15, row.Asked), granted == No ? sceError : sceSuccess);
                if (granted != No) {
                    const Trailer trailer = ReadTrailer(1, KeyA);
                    EXPECT_EQ(trailer.KeysUsed, keysToUse);
                    EXPECT_EQ(trailer.Conditions, keysToUse == KeyAAlone ? row.ReadBackOfA : row.ReadBack);
                    rights += TrailerRights(keyType) << (keyType == KeyTypeB ? 2 : 0);
                }
            }
            EXPECT_EQ(rights, granted == No ? 0 : granted) << row.Asked << ' ' << int{keysToUse};
        }
    }
}

TEST_F(AccessLevelsTest, LevelsOfMinusOneKeepTheCardsBitsAndByte9)
{
    LayCard();
    ASSERT_EQ(Rekey(1, BothKeys, 13, 12), sceSuccess);
    ASSERT_EQ(Rekey(1, BothKeys, -1, -1, KeyB, KeyTypeB), sceSuccess);
    EXPECT_EQ(TrailerText(7, KeyA), L"00000000000078778869000000000000");
    // Key mode 0 takes the card's: here both keys, for which level 1 can't be stored.
    EXPECT_EQ(Rekey(1, /*keysToUse=*/0, 1, -1, KeyB, KeyTypeB), sceError);
    EXPECT_EQ(encoder.LastError()->Number, -13);

    LayCard();
    ASSERT_EQ(Rekey(1, /*keysToUse=*/0, 1, -1), sceSuccess);
    EXPECT_EQ(ReadTrailer(1, KeyA).Security[0], scbs_A_Read + scbs_B_Read);
}

TEST_F(AccessLevelsTest, ValueBlocksCountUntilTheEncoderIsClosed)
{
    LayCard();
    ASSERT_EQ(Rekey(1, BothKeys, 15, 12), sceSuccess);
    ASSERT_EQ(encoder.WriteValueBloc(5, KeyB, KeyTypeB, 1000), sceSuccess);
    std::wstring contents;
    EXPECT_EQ(encoder.ReadDataBloc(5, KeyA, KeyTypeA, contents), sceSuccess);
    EXPECT_EQ(contents, L"E803000017FCFFFFE803000005FA05FA");

    ASSERT_EQ(Rekey(1, BothKeys, 13, 12, KeyB, KeyTypeB), sceSuccess);
    EXPECT_EQ(TrailerText(7, KeyA).substr(12, 6), L"58778A"); // 100, 110, 100, 011
    encoder.ReOpenEncoder();
    ASSERT_EQ(Rekey(1, BothKeys, 13, 12, KeyB, KeyTypeB), sceSuccess);
    EXPECT_EQ(TrailerText(7, KeyA).substr(12, 6), L"787788"); // 100, 100, 100, 011
}

TEST_F(AccessLevelsTest, SectorOfSixteenBlocksHasFiveBlocksInASlot)
{
    LayCard();
    ASSERT_EQ(encoder.WriteValueBloc(141, FactoryKey, KeyTypeA, 1), sceSuccess);
    ASSERT_EQ(encoder.WriteSectorTrailer(32, FactoryKey, KeyTypeA, KeyA, KeyB, BothKeys, scbs_B_Read,
                                         scbs_A_Read + scbs_B_Write, scbs_A_Nothing,
                                         scss_B_WriteKeysConditions, /*BX=*/0xAB),
              sceSuccess);
    for (int32_t block = 128; block < 143; ++block) {
        const int32_t expected[] = {4, 13, 0};
        EXPECT_EQ(BlockRights(block), expected[(block - 128) / 5]) << block;
    }
    const Trailer trailer = ReadTrailer(32, KeyA);
    EXPECT_EQ(trailer.BX, 0xAB);
    EXPECT_EQ(trailer.KeysUsed, BothKeys);
    // Block 141 stands for the second slot, though it lies in the third: 101, 110, 111, 011.
    EXPECT_EQ(TrailerText(143, KeyA).substr(12, 6), L"1872DE");
}

TEST(AccessBitsTest, EveryTripleInEverySlotComesBackAndLeavesTheOthers)
{
    for (const ConditionBytes before :
         {ConditionBytes{0x00, 0x00, 0x00}, {0xFF, 0xFF, 0xFF}, {0xFF, 0x07, 0x80}}) {
        for (unsigned slot = 0; slot < 4; ++slot) {
            for (const AccessTriple triple : {"000", "001", "010", "011", "100", "101", "110", "111"}) {
                ConditionBytes bytes = before;
                StoreAccessBits(triple, static_cast<uint8_t>(1U << slot), bytes);
                for (unsigned other = 0; other < 4; ++other) {
                    const AccessTriple expected = other == slot ? triple : DecodeSlot(before, other).Triple;
                    EXPECT_EQ(DecodeSlot(bytes, other).Triple, expected);
                }
            }
        }
    }
    ConditionBytes bytes = {0xFF, 0xFF, 0xFF};
    StoreAccessBits("100", 8, bytes);
    EXPECT_EQ(bytes, (ConditionBytes{0xF7, 0xFF, 0x77}));
}

} // namespace
} // namespace acg
