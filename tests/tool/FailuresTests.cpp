// The README's table "What goes wrong" against what acg says that a failure means, row by row.
#include "tool/Failures.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

TEST(Failures, ReadmeMeansTheSameByEach)
{
    std::string readme = (std::ostringstream() << std::ifstream(ACG_DOCS "/../README.md").rdbuf()).str();
    readme = std::regex_replace(readme, std::regex(R"(`|\[(.*?)\]\(.*?\))"), "$1"); // code and links
    const std::regex pattern(
        R"(\n\| (-?\d+) .*? \| ?(.*?) \| ?(?:. or another|(.*?)) \| (.*?) \| .*? \|(?=\n))");
    std::sregex_iterator row(readme.begin(), readme.end(), pattern);
    std::string path;
    for (const acg::tool::Remedy& known : acg::tool::Remedies()) {
        ASSERT_NE(row, std::sregex_iterator()) << known.Meaning;
        const std::smatch& cells = *row;
        path = cells[2] == "the same" ? path : cells[2].str();
        EXPECT_EQ(cells[1], std::to_string(known.Number));
        EXPECT_NE(path.find(known.Path), std::string::npos) << path << " has no " << known.Path;
        EXPECT_EQ(std::regex_replace(cells[3].str(), std::regex(", "), ""), known.Letters);
        EXPECT_EQ(cells[4], std::string(known.Meaning));
        ++row;
    }
    EXPECT_EQ(row, std::sregex_iterator()) << row->str();
}
