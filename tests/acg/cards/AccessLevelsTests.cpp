// The access levels against the simulated card: what a level promises, what the card then allows, and what
// the level reads back as.
#include "tests/acg/cards/CardTest.h"

using namespace acg;

namespace
{

const std::wstring FactoryKey = L"FFFFFFFFFFFF";
const std::wstring KeyA = TrailerArguments().KeyA;
const std::wstring KeyB = TrailerArguments().KeyB;

// What the card grants for the levels 0 to 15. Bit 0: key A reads (on the trailer: writes keys), bit 1: key A
// writes (conditions), bits 2 and 3 the same for key B. Writing is never granted without reading, nor writing
// the conditions without the keys to key A. Key B's part doesn't count if key A works alone.
constexpr int32_t No = -2; ///< refused
constexpr int32_t ToKeyAAlone[] = {0, 1, 3, 3, 0, 1, 3, 3, 0, 1, 3, 3, 0, 1, 3, 3};
constexpr int32_t OnBlock[] = {0, No, No, No, 4, 5, No, No, 12, 13, 15, 15, 12, 13, 15, 15};
constexpr int32_t OnTrailer[] = {0, No, No, No, 4, No, No, No, 8, No, No, No, 12, No, No, No};

/// An encoder on the simulated reader, with a factory-fresh 4K card.
class AccessLevelsTest : public testing::Test
{
protected:
    AccessLevelsTest() { LayCard(); }

    Encoder encoder;

    void LayCard()
    {
        static int32_t serialNumber = 10005000;
        encoder.Parameters(L"Device=com1,card=4k,uid=" + std::to_wstring(++serialNumber));
        encoder.ReOpenEncoder();
    }

    /// Writes the trailer of sector 1, with one level for all data blocks, and gives how it reads back, or
    /// the number of the failure.
    Numbers Rekey(uint8_t keysToUse, int32_t block, int32_t trailer, const std::wstring& key = KeyB,
                  uint8_t keyType = KeyTypeB)
    {
        const TrailerArguments arguments{.KeysToUse = keysToUse, .Levels = {block, block, block, trailer}};
        const auto code = WriteTrailer(encoder, key, keyType, arguments);
        return code == sceError ? Numbers{encoder.LastError()->Number} : ReadTrailer(encoder, KeyA, 1);
    }
    Numbers RekeyNewCard(uint8_t keysToUse, int32_t block, int32_t trailer)
    {
        LayCard();
        return Rekey(keysToUse, block, trailer, FactoryKey, KeyTypeA);
    }

    std::wstring Read(int32_t block, const std::wstring& key, uint8_t keyType = KeyTypeA)
    {
        std::wstring contents;
        return encoder.ReadDataBloc(block, key, keyType, contents) == sceSuccess ? contents : L"";
    }

    /// The rights that the card grants on a data block.
    int32_t BlockRights(int32_t block)
    {
        const auto rightsOf = [&](const std::wstring& key, uint8_t keyType) {
            std::wstring contents(32, L'1');
            const int32_t reads = Read(block, key, keyType).empty() ? 0 : 1;
            return reads + (encoder.WriteDataBloc(block, key, keyType, contents) == sceSuccess ? 2 : 0);
        };
        return rightsOf(KeyA, KeyTypeA) + 4 * rightsOf(KeyB, KeyTypeB);
    }

    /// What a key changes in the trailer of sector 1, by writing all of it.
    int32_t TrailerRights(const std::wstring& key, uint8_t keyType)
    {
        const std::wstring newKey = L"C0C1C2C3C4C5";
        std::wstring contents = newKey + L"7F078855" + newKey;
        static_cast<void>(encoder.WriteDataBloc(7, key, keyType, contents));
        const int32_t keys = Read(7, newKey).empty() ? 0 : 1;
        return keys + (Read(7, keys != 0 ? newKey : KeyA).find(L"55") == 18 ? 2 : 0);
    }
};

TEST_F(AccessLevelsTest, EachLevelGrantsWhatItSaysAndReadsBackAsThat)
{
    for (size_t level = 0; level < std::size(OnBlock); ++level) {
        for (const uint8_t keysToUse : {KeyAAlone, BothKeys}) {
            SCOPED_TRACE(testing::Message() << "level " << level << ", keys " << int{keysToUse});
            const bool alone = keysToUse == KeyAAlone;
            const auto asked = static_cast<int32_t>(level);
            const auto readBack = [&](int32_t block, int32_t trailer, bool stored) {
                return stored ? Numbers{sceSuccess, keysToUse, block, block, block, trailer, 0x69}
                              : Numbers{-13};
            };
            const int32_t onBlock = alone ? ToKeyAAlone[level] : OnBlock[level];
            // The bits would grant key B what they grant key A, were it a key.
            const int32_t back = alone ? onBlock * 5 : onBlock;
            const int32_t all = alone ? 3 : 12;
            EXPECT_EQ(RekeyNewCard(keysToUse, asked, all), readBack(back, all, onBlock != No));
            for (const int32_t block : {4, 5, 6}) {
                EXPECT_EQ(BlockRights(block), std::max(onBlock, 0));
            }

            const int32_t onTrailer = alone ? ToKeyAAlone[level] : OnTrailer[level];
            const Numbers expected = readBack(15, onTrailer, onTrailer != No);
            EXPECT_EQ(RekeyNewCard(keysToUse, 15, asked), expected);
            const int32_t ofKeyA = TrailerRights(KeyA, KeyTypeA);
            EXPECT_EQ(RekeyNewCard(keysToUse, 15, asked), expected);
            EXPECT_EQ(ofKeyA + 4 * TrailerRights(KeyB, KeyTypeB), std::max(onTrailer, 0));
        }
    }
}

TEST_F(AccessLevelsTest, ValueBlocksCountUntilTheEncoderIsClosed)
{
    RekeyNewCard(BothKeys, 15, 12);
    EXPECT_EQ(encoder.WriteValueBloc(4, KeyB, KeyTypeB, 0), sceSuccess);
    EXPECT_EQ(encoder.WriteValueBloc(5, KeyB, KeyTypeB, 1000), sceSuccess);
    EXPECT_EQ(Read(5, KeyA), L"E803000017FCFFFFE803000005FA05FA");
    Rekey(BothKeys, 13, 12);
    EXPECT_EQ(Read(7, KeyA).substr(12, 6), L"48778B"); // 110, 110, 100, 011
    encoder.ReOpenEncoder();
    Rekey(BothKeys, 9, 12);
    EXPECT_EQ(Read(7, KeyA).substr(12, 6), L"787788"); // 100, 100, 100, 011
}

TEST_F(AccessLevelsTest, SectorOfSixteenBlocksHasFiveBlocksInASlot)
{
    EXPECT_EQ(encoder.WriteValueBloc(141, FactoryKey, KeyTypeA, 1), sceSuccess);
    const TrailerArguments arguments{
        .KeysToUse = BothKeys, .Levels = {4, 9, 0, 12}, .BX = 0xAB, .Sector = 32};
    EXPECT_EQ(WriteTrailer(encoder, FactoryKey, KeyTypeA, arguments), sceSuccess);
    for (int32_t block = 128; block < 143; ++block) {
        EXPECT_EQ(BlockRights(block), block < 133 ? 4 : block < 138 ? 13 : 0) << block;
    }
    // Block 141 stands for the second slot, though it lies in the third: 101, 110, 111, 011.
    EXPECT_EQ(Read(143, KeyA), L"0000000000001872DEAB000000000000");
}

} // namespace
