// The exported functions with null pointers, which no host passes on purpose.
#include "acg/platform/AnsiText.h"
#include "tests/ScriptedReader.h"

using namespace acg;

namespace
{

TEST(ReaderLibraryTest, NullPointersAreEmptyTextsAndNoBuffer)
{
    ScriptedReader reader;
    CommSettings settings;
    CommHandle comm{};
    ASSERT_FALSE(reader.DLL().OpenComm(L"x", 1, settings, comm)); // the one that is called from here on
    reader.Forget();
    reader.Replies[""] = "nothing";
    EXPECT_EQ(OpenComm(nullptr, 1, nullptr), 0U);
    EXPECT_TRUE(reader.Calls.empty());
    EXPECT_EQ(ByteString(SendCommandGetData(7, nullptr, nullptr, nullptr)).Bytes(), "nothing");
    EXPECT_EQ(ByteString(DetectReader(7, nullptr)).Bytes(), "A");
}

} // namespace
