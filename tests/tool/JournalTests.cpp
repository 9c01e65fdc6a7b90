// The journal of a table: what it keeps, and what is left of a damaged one.
#include "tests/TemporaryFolder.h"
#include "tool/Failures.h"
#include "tool/Journal.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace acg::tool;

TEST(ToolJournal, IsReadAgainWithoutAnUnfinishedLineAndRefusedIfDamaged)
{
    const std::string first = "acg issue, journal 1, FNV-1a 00000001FFFFFFFF\n";
    const std::string begun = "2026-11-23T09:30:00Z\t2\tA1000001\tbegun\t\t0000ABCD\n";
    const std::pair<std::string, int> rows[] = {
        {"", 0},
        {"acg is", 0},
        {first, 0},
        {first + begun, 1},
        {first + begun + begun.substr(0, begun.size() - 1), 1},
        {"other", -1},
        {"other\n", -1},
        {begun, -1},
        {first + "\n", -1},
        {first + begun.substr(1, 30) + '\n', -1},
        {first + "t\t0\tA1000001\tbegun\t\t0000ABCD\n", -1},
        {first + "t\t2\tA1000001\tbegun\t\tA1G\n", -1},
        {first + "t\t2\tA1000001\tgone\t\t0\n", -1},
    };
    const TemporaryFolder folder;
    const std::string table = (folder.Path / "cards.csv").string();
    for (const auto& [text, count] : rows) {
        std::ofstream(table + ".journal", std::ios::binary) << text;
        int entries = -1;
        try {
            Journal journal(table, 0x1FFFFFFFF);
            EXPECT_THROW(Journal(table, 0), UsageError); // it is locked
            EXPECT_TRUE(journal.IsOfTable());
            journal.Append({3, "A1\n", JournalEntry::Step::CardFailed, "A0A1A2A3A4A5\t", 7});
            entries = static_cast<int>(journal.Entries().size()) - 1;
        } catch (const UsageError&) {
        }
        EXPECT_EQ(entries, count) << text;
        if (entries >= 0) {
            Journal journal(table, 2);
            EXPECT_FALSE(journal.IsOfTable());
            journal.AcceptTable();
            EXPECT_EQ(journal.Entries().size(), static_cast<size_t>(count) + 1);
            EXPECT_EQ(journal.Entries().back().Reason, "************\\x09");
            EXPECT_EQ(journal.Entries().back().Contents, 7U);
        }
    }
}
