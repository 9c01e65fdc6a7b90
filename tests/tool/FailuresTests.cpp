// The sections of docs/troubleshooting.md against what acg says of a failure.
#include "tool/Failures.h"

#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

TEST(Failures, TroubleshootingSaysTheSameOfEach)
{
    std::string page = (std::ostringstream() << std::ifstream(ACG_DOCS "/troubleshooting.md").rdbuf()).str();
    page = std::regex_replace(page, std::regex("\n  (?! )"), " "); // an item's further lines
    page = std::regex_replace(page, std::regex("`"), "");
    const std::regex pattern("\n## (-?\\d+): .*\n\n- Record: RdrCommand (.*?)(?:; RdrRetCode (.*))?\n"
                             "- Meaning: (.*)\n- In a program: .*\n- With acg: (.*)\n");
    std::sregex_iterator section(page.begin(), page.end(), pattern);
    for (const acg::tool::Remedy& known : acg::tool::Remedies()) {
        ASSERT_NE(section, std::sregex_iterator()) << known.Meaning;
        const std::smatch& parts = *section;
        EXPECT_EQ(parts[1], std::to_string(known.Number));
        EXPECT_NE(parts[2].str().find(known.Path), std::string::npos) << parts[2] << " has no " << known.Path;
        EXPECT_EQ(std::regex_replace(parts[3].str(), std::regex(", "), ""), known.Letters);
        EXPECT_EQ(parts[4], std::string(known.Meaning));
        EXPECT_EQ(parts[5], std::string(known.Action));
        ++section;
    }
    EXPECT_EQ(section, std::sregex_iterator()) << section->str();
}
