// Where the system's library loading looks, and what it says if it finds nothing.
#include "acg/platform/Library.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace acg;

namespace
{

// Error codes of the two systems: no such library, not a library.
#ifdef _WIN32
constexpr const char* Prefix = "";
constexpr const char* Ending = ".dll";
constexpr int32_t NoLibrary = 126;
constexpr int32_t Refused = 193;
#else
constexpr const char* Prefix = "lib";
constexpr const char* Ending = ".so";
constexpr int32_t NoLibrary = 2;
constexpr int32_t Refused = 80;
#endif

TEST(LibraryTest, IsNotLoadedFromTheCurrentDirectoryNorFromAnyFile)
{
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path();
    const fs::path program = fs::absolute(testing::internal::GetArgvs().front());
    const TemporaryFolder folder;
    const std::string name = folder.Path.filename().string(); // a library's, too: no other run has it
    const std::string file = Prefix + name + Ending;
    fs::copy_file(program.parent_path() / (Prefix + std::string("ACGReader330") + Ending),
                  folder.Path / file);
    fs::current_path(folder.Path);
    const EntryPoint entry = Library(name.c_str()).Find("OpenComm");
    fs::current_path(before);
    EXPECT_FALSE(entry.LibraryLoaded);
    EXPECT_EQ(entry.SystemError, NoLibrary);

    const fs::path notOne = program.parent_path() / file;
    std::ofstream(notOne) << "text";
    EXPECT_EQ(Library(name.c_str()).Find("OpenComm").SystemError, Refused);
    fs::remove(notOne);
}

} // namespace
