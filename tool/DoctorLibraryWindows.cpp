#include "tool/DoctorWindows.h"

#include "abi/ACGReader330.h"
#include "acg/platform/LibraryFile.h"
#include "tool/Text.h"

#include <array>
#include <string_view>
#include <system_error>

namespace acg::tool
{

namespace
{

namespace fs = std::filesystem;

fs::path SystemFolder()
{
    std::array<wchar_t, MAX_PATH> path = {};
    if (GetSystemWow64DirectoryW(path.data(), path.size()) == 0) { // there is none on 32-bit Windows
        GetSystemDirectoryW(path.data(), path.size());
    }
    return path.data();
}

bool Is64Bit(const fs::path& file)
{
    constexpr size_t Most = 4096; // of what a program or library begins with
    const std::string start = ReadFile(file, Most).value_or("");
    constexpr std::string_view Mark64("PE\0\0\x64\x86", 6);
    return start.find(Mark64) != std::string::npos;
}

} // namespace

DoctorLibrary FindReaderLibrary(const DoctorReport& report, std::vector<fs::path> folders)
{
    folders.push_back(SystemFolder());
    DoctorLibrary library;
    library.FirstFolder = Utf8Of(folders.front());
    library.LookUp = [](ReaderFunction /*function*/) { return EntryPoint{}; };
    for (const fs::path& folder : folders) {
        const fs::path file = folder / LibraryFileName("ACGReader330");
        std::error_code error;
        library.Searched += (library.Searched.empty() ? "" : ", ") + Utf8Of(folder);
        if (!fs::exists(file, error)) {
            continue;
        }
        const EntryPoint entry = FindInFile(file, "");
        if (entry.LibraryLoaded) {
            library.LookUp = [file](ReaderFunction function) { return FindInFile(file, NameOf(function)); };
            library.File = Utf8Of(file);
            library.Problem.clear();
            break;
        }
        if (library.Problem.empty()) {
            const bool is64 = Is64Bit(file);
            library.Problem =
                Utf8Of(file) + ", " + (is64 ? report.In(texts::Is64) : SystemText(entry.SystemError));
            library.Remedy = is64 ? texts::Take
                             : entry.SystemError == ERROR_INVALID_PARAMETER
                                 ? texts::Update // its flags are unknown
                                 : texts::Reinstall;
        }
    }
    return library;
}

} // namespace acg::tool
