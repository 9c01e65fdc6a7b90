// The functions of the library, and their texts.
#include "platform/AnsiText.h"
#include "tests/ScriptedReader.h"

namespace acg
{

namespace
{

TEST(ReaderDLLTest, TextIsAnsiInTheLibrary)
{
    EXPECT_EQ(ToAnsi(L"caf\u00e9 \u20ac\u0153\u0178\u0081 \u0394"), "caf\xe9 \x80\x9c\x9f\x81 ?");
    for (int code = 0; code < 256; ++code) {
        const std::string ansi(1, static_cast<char>(code));
        EXPECT_EQ(ToAnsi(FromAnsi(ansi)), ansi) << code;
    }
    EXPECT_EQ(ByteString(nullptr).Bytes(), "");
}

} // namespace
} // namespace acg
