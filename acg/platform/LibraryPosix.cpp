#include "acg/platform/LibraryFile.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace acg
{

namespace
{

void* Load(const std::string& file)
{
    const std::string folder = OwnFolder();
    void* handle = folder.empty() ? nullptr : dlopen((folder + file).c_str(), RTLD_NOW | RTLD_LOCAL);
    return handle != nullptr ? handle : dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

/// Why Load has just failed: ENOENT if there is no such file, ELIBBAD if one was refused. The loader
/// reports no code, only a message in the user's language. For a missing file it begins with the file's name
/// and ends with the system's text for ENOENT; for a missing dependency of the file the name differs.
int32_t CauseOf(const std::string& file)
{
    const char* const words = dlerror();
    const std::string_view cause = words != nullptr ? words : "";
    const bool isMissing = cause.starts_with(file + ':') && cause.ends_with(std::strerror(ENOENT));
    const std::string folder = OwnFolder();
    const bool isHere = !folder.empty() && access((folder + file).c_str(), F_OK) == 0;
    return isMissing && !isHere ? ENOENT : ELIBBAD;
}

EntryPoint FindIn(void* library, const char* function)
{
    void* const address = dlsym(library, function);
    if (address == nullptr) {
        return {.LibraryLoaded = true, .SystemError = ENOSYS};
    }
    return {.Address = reinterpret_cast<EntryPoint::Function>(address), .LibraryLoaded = true};
}

} // namespace

// The system lists what it has mapped by its full name, however it was loaded; the loader keeps the name as
// it was given, which may be relative to a former current directory.
SystemPath OwnPath()
{
    const auto ownAddress = reinterpret_cast<uintptr_t>(&OwnPath);
    std::ifstream maps("/proc/self/maps");
    std::string mapping; // as in: 7f0012340000-7f0012350000 r-xp 00001000 08:01 1234   /opt/host
    while (std::getline(maps, mapping)) {
        uintptr_t from = 0;
        uintptr_t to = 0;
        std::sscanf(mapping.c_str(), "%" SCNxPTR "-%" SCNxPTR, &from, &to);
        if (ownAddress >= from && ownAddress < to) {
            return mapping.substr(std::min(mapping.find('/'), mapping.size()));
        }
    }
    return {};
}

SystemPath LibraryFileName(const char* name)
{
    return std::string("lib") + name + ".so";
}

EntryPoint FindInFile(const SystemPath& file, const char* function)
{
    void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        return {.SystemError = access(file.c_str(), F_OK) == 0 ? ELIBBAD : ENOENT};
    }
    return FindIn(handle, function);
}

EntryPoint Library::Find(const char* function)
{
    void* handle = m_handle;
    if (handle == nullptr) {
        const std::string file = LibraryFileName(m_name);
        handle = Load(file);
        if (handle == nullptr) {
            return {.SystemError = CauseOf(file)};
        }
        m_handle = handle;
    }
    return FindIn(handle, function);
}

} // namespace acg
