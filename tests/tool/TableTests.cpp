// Tables as spreadsheets write them, and those that are refused.
#include "tests/TemporaryFolder.h"
#include "tool/Failures.h"
#include "tool/Table.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace acg::tool;

TEST(ToolTable, ReadsWhatSpreadsheetsWriteAndRefusesTheRestByRowAndColumn)
{
    const std::pair<std::string, std::string> rows[] = {
        {"a,b\r\n1,2\r\n", "a|b|2:1|2|"},
        {"\xEF\xBB\xBF\"a;b\",\"c\"\n\"1,\"\"x\"\"\r\n2\",\n,\n,3", "a;b|c|2:1,\"x\"\r\n2||4:|3|"},
        {"n,o;b;;\n1;;;\n", "n,o|b|2:1||"},
        {"a\tb\r\n\"\"\t2\t\r", "a|b|2:|2|"},
        {"a\n\xC3\xA9\n", "a|2:\xC3\xA9|"},
        {"", "no names of columns"},
        {"a,b\n1,\"2\n3", "row 2, column 2: the quote isn't closed"},
        {"a\n\n\"1\"x", "row 3, column 1: text after"},
        {"a\n1\"2\"", "row 2, column 1: a quote in"},
        {"a\n1,2", "row 2, column 2: the first row"},
        {"a\n\xE9", "row 2, column 1: it isn't UTF-8"},
        {std::string("a\0", 2), "is UTF-16; save it as UTF-8"},
    };
    const TemporaryFolder folder;
    const std::string file = (folder.Path / "cards.csv").string();
    for (const auto& [text, expected] : rows) {
        std::ofstream(file, std::ios::binary) << text;
        std::string read;
        const auto add = [&](const std::vector<std::string_view>& cells) {
            for (const std::string_view cell : cells) {
                read.append(cell) += '|';
            }
        };
        try {
            const Table table(file);
            add(table.Names());
            for (const Table::Row& row : table.Rows()) {
                read += std::to_string(row.Number) + ':';
                add(row.Cells);
            }
            EXPECT_EQ(read, expected);
        } catch (const UsageError& error) {
            EXPECT_NE(error.Text.find(expected), std::string::npos) << error.Text;
            EXPECT_TRUE(error.Text.starts_with(file)) << error.Text;
        }
    }
}
