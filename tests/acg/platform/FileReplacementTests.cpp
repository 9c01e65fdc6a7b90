// What a replacement makes of what has the name, and that it leaves nothing else in the folder.
#include "acg/platform/FileReplacement.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

using namespace acg;
namespace fs = std::filesystem;

namespace
{

TEST(FileReplacementTest, LeavesTheOldContentsOrTheNewOnesAndNothingElse)
{
    const TemporaryFolder temporary;
    const fs::path& folder = temporary.Path;
    const fs::path device = fs::exists("/dev/null") ? "/dev/null" : "NUL";
    using enum ExistingFile;
    // Path; what to do with an existing file; contents; what fails; the contents of "file" afterwards.
    const std::tuple<fs::path, ExistingFile, std::string, std::errc, std::string> steps[] = {
        {folder / "file", Kept, "one", std::errc(), "one"},
        {folder / "file", Kept, "two", std::errc::file_exists, "one"},
        {folder / "file", Replaced, "three", std::errc(), "three"},
        {folder, Replaced, "four", NotARegularFile, "three"},
        {device, Replaced, "five", NotARegularFile, "three"},
        {folder / "nowhere" / "file", Kept, "six", std::errc::no_such_file_or_directory, "three"},
        {"", Kept, "seven", std::errc::no_such_file_or_directory, "three"},
    };
    for (const auto& [path, existing, contents, expected, left] : steps) {
        FileReplacement meanwhile; // another process that is at the same file
        FileReplacement replacement;
        std::error_code error = meanwhile.Create(path.native(), existing);
        EXPECT_EQ(!error, !replacement.Create(path.native(), existing));
        error = error ? error : replacement.Finish(contents);
        EXPECT_TRUE(error == expected) << contents << ": " << error.message();
        if (!error && existing == Kept) {
            EXPECT_TRUE(meanwhile.Finish("too late") == std::errc::file_exists);
        }
        std::vector<uint8_t> found(10);
        EXPECT_FALSE(ReadContents((folder / "file").native(), found));
        EXPECT_EQ(std::string(found.begin(), found.end()), left);
    }
    fs::permissions(folder / "file", fs::perms::owner_read);
    FileReplacement refused;
    EXPECT_TRUE(refused.Create((folder / "file").native(), Replaced) == std::errc::permission_denied);
    fs::permissions(folder / "file", fs::perms::owner_all); // Windows removes no read-only file
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
}

} // namespace
