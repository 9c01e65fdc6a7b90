// Where the system's library loading looks, and what it says where it finds nothing.
#include "platform/Library.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace acg;

namespace
{

// Error codes of the two systems: no such library, not a library.
#ifdef _WIN32
constexpr const char* SimulatorFile = "ACGReader330.dll";
constexpr const char* CopyName = "OnlyHere.dll";
constexpr int32_t NoLibrary = 126;
constexpr int32_t Refused = 193;
#else
constexpr const char* SimulatorFile = "libACGReader330.so";
constexpr const char* CopyName = "libOnlyHere.so";
constexpr int32_t NoLibrary = 2;
constexpr int32_t Refused = 80;
#endif

TEST(LibraryTest, IsNotLoadedFromTheCurrentDirectoryNorFromAnyFile)
{
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path();
    const fs::path program = fs::absolute(testing::internal::GetArgvs().front());
    const fs::path folder = fs::temp_directory_path() / "acg-library-test";
    fs::create_directories(folder);
    fs::copy_file(program.parent_path() / SimulatorFile, folder / CopyName,
                  fs::copy_options::overwrite_existing);
    fs::current_path(folder);
    const EntryPoint entry = Library("OnlyHere").Find("OpenComm");
    fs::current_path(before);
    fs::remove_all(folder);
    EXPECT_FALSE(entry.LibraryLoaded);
    EXPECT_EQ(entry.SystemError, NoLibrary);

    const fs::path notOne = program.parent_path() / CopyName;
    std::ofstream(notOne) << "text";
    EXPECT_EQ(Library("OnlyHere").Find("OpenComm").SystemError, Refused);
    fs::remove(notOne);
}

} // namespace
