// In which folders a library is looked for, and what is said if it isn't found.
#include "acg/platform/LibraryFile.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace acg;

namespace
{

// Error codes of the two systems: no such library, not a library.
#ifdef _WIN32
constexpr int32_t NoLibrary = 126;
constexpr int32_t Refused = 193;
#else
constexpr int32_t NoLibrary = 2;
constexpr int32_t Refused = 80;
#endif

TEST(LibraryTest, IsNotLoadedFromTheCurrentDirectoryNorFromAnyFile)
{
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path();
    const TemporaryFolder folder;
    const std::string name = folder.Path.filename().string(); // a library's, too: no other run has it
    const fs::path file = LibraryFileName(name.c_str());
    fs::copy_file(OwnFolder() / fs::path(LibraryFileName("ACGReader330")), folder.Path / file);
    fs::current_path(folder.Path);
    const EntryPoint entry = Library(name.c_str()).Find("OpenComm");
    fs::current_path(before);
    EXPECT_FALSE(entry.LibraryLoaded);
    EXPECT_EQ(entry.SystemError, NoLibrary);

    const fs::path notOne = OwnFolder() / file;
    std::ofstream(notOne) << "text";
    EXPECT_EQ(Library(name.c_str()).Find("OpenComm").SystemError, Refused);
    fs::remove(notOne);
}

} // namespace
