// Reading and writing one block.
#include "tests/cards/CardTest.h"

namespace acg
{

namespace
{

using DataBlocksTest = CardTest;

TEST_F(DataBlocksTest, EachOperationSelectsLogsInAndSendsItsCommand)
{
    Open();
    std::wstring contents = L"not read";
    EXPECT_EQ(encoder.ReadDataBloc(9, Key, KeyTypeB, contents), sceSuccess);
    EXPECT_EQ(contents, Block);
    EXPECT_EQ(Last(), Clean(L"ReadDataBloc"));
    EXPECT_EQ(reader.Commands(), std::string(SelectCommands) + ", login 02BB************, read block 09");
    EXPECT_TRUE(reader.WasSent("login", "02BBA1B2C3D4E5F6"));

    reader.Forget();
    contents = L" " + Block + L" ";
    EXPECT_EQ(encoder.WriteDataBloc(200, Key, /*KeyType=*/0, contents), sceSuccess);
    EXPECT_EQ(contents, Block); // what the reader answered
    EXPECT_EQ(Last(), Clean(L"WriteDataBloc"));
    EXPECT_EQ(reader.Commands(),
              std::string(SelectCommands) +
                  ", login 30AA************, write block C800112233445566778899AABBCCDDEEFF");

    // Only 2 is key B, and the reader alone judges a key.
    for (const uint8_t keyType : std::initializer_list<uint8_t>{0, 1, 3, 255}) {
        reader.Forget();
        EXPECT_EQ(encoder.ReadDataBloc(0, L" zz", keyType, contents), sceSuccess);
        EXPECT_TRUE(reader.WasSent("login", "00AA ZZ"));
    }
}

TEST_F(DataBlocksTest, BadBlockTextIsRefusedBeforeTheReaderIsAsked)
{
    const std::wstring trimmed(32, L'0');
    for (const std::wstring& bad :
         {trimmed.substr(1), trimmed + L"0", L"G" + trimmed.substr(1), std::wstring()}) {
        std::wstring contents = L" " + bad;
        EXPECT_EQ(encoder.WriteDataBloc(1, Key, 1, contents), sceError);
        EXPECT_EQ(contents, bad);
        EXPECT_EQ(Last(), (Record{-11, L"A data bloc must contain 32 hex digits", L"WriteDataBloc"}));
    }
    EXPECT_TRUE(reader.Calls.empty());
}

} // namespace
} // namespace acg
