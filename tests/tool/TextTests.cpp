// What acg does to text from outside before it shows it.
#include "tool/Failures.h"
#include "tool/Text.h"

#include <gtest/gtest.h>

using namespace acg::tool;

TEST(ToolText, MasksWhateverMayBeAKeyAndNothingElse)
{
    const char* const rows[][2] = {
        {"A0A1A2A3A4A5", "************"},
        {"there is no option --a0a1a2a3a4a5", "there is no option --************"},
        {"A0 A1 A2 A3 A4 A5", "** ** ** ** ** **"},
        {"a0:a1:a2:a3:a4:a5", "**:**:**:**:**:**"},
        {"A0A1A2-A3A4A5", "******-******"},
        {"A0A1A2A3A4A", "***********"},   // a digit was left out
        {"A0A1A2A3A4Ax", "***********x"}, // or mistyped
        {"--key=FFFFFFFFFFFF,FFFFFFFFFFFF", "--key=************,************"},
        {"FFFFFFFFF", "FFFFFFFFF"},
        {"Device=com1,uid=1D2C3B4A", "Device=com1,uid=1D2C3B4A"},
        {"an argument too many: feed", "an argument too many: feed"},
        {"Timeout=2200;Baud rate=115200", "Timeout=2200;Baud rate=115200"},
    };
    for (const auto& [text, masked] : rows) {
        EXPECT_EQ(MaskKeys(text), masked);
    }
}

TEST(ToolText, ShowsControlCharactersAndBytesThatAreNoTextAsDigits)
{
    const std::pair<std::string, std::string> rows[] = {
        {"MultiISO 2.1", "MultiISO 2.1"},
        {"\x1b[31mred\n\x7f", R"(\x1b[31mred\x0a\x7f)"},
        {"L\xC3\xA9s\xC3\xA9", "L\xC3\xA9s\xC3\xA9"},
        {"\xC2\x9B\xC2\xA0", "\\x9b\xC2\xA0"},
        {"\xFF\xC3", R"(\xff\xc3)"},
        {std::string("a\0b", 3), R"(a\x00b)"},
    };
    for (const auto& [text, shown] : rows) {
        EXPECT_EQ(Printable(text), shown);
    }
}

TEST(ToolText, ReadsWholeNumbersInTheirRangeAlone)
{
    EXPECT_EQ(ParseNumber("-2147483648", INT32_MIN, INT32_MAX, ""), INT32_MIN);
    EXPECT_EQ(ParseNumber("39", 0, 39, ""), 39);
    for (const char* const text : {"", "40", "-1", "+1", " 1", "1 ", "0x1", "2147483648", "99999999999"}) {
        EXPECT_THROW(static_cast<void>(ParseNumber(text, 0, 39, "")), UsageError) << text;
    }
}
