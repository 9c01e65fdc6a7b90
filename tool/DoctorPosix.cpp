#include "tool/Doctor.h"

#include "acg/platform/LibraryFile.h"
#include "tool/Failures.h"

#include <cerrno>
#include <dlfcn.h>
#include <filesystem>
#include <system_error>

namespace acg::tool
{

DoctorLibrary CheckInstallation(DoctorReport& report, const std::string& host)
{
    if (!host.empty()) {
        throw UsageError{"--host is for Windows: a host of this system has no manifest"};
    }
    DoctorLibrary library;
    library.FirstFolder = OwnFolder();
    library.Searched = library.FirstFolder + ", " + report.In(texts::LoaderPath);
    // The loader says what is wrong with a file in words alone, which begin with its path.
    const SystemPath name = LibraryFileName("ACGReader330");
    if (library.LookUp(ReaderFunction()).SystemError == ELIBBAD) {
        const SystemPath here = OwnFolder() + name;
        std::error_code error;
        if (dlopen((std::filesystem::exists(here, error) ? here : name).c_str(), RTLD_NOW | RTLD_LOCAL) ==
            nullptr) {
            library.Problem = dlerror();
        }
        library.Remedy = texts::Reinstall;
    }
    return library;
}

} // namespace acg::tool
