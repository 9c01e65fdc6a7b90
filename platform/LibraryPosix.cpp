#include "platform/Library.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <climits>
#include <cstdio>
#include <dlfcn.h>
#include <memory>
#include <string>
#include <string_view>

namespace acg
{

namespace
{

/// The folder of the program or shared object that this code is linked into, with a slash behind it, or
/// empty text where it isn't known. The system lists what it has mapped by its full name, however it was
/// loaded; the loader keeps the name as it was given, which may be relative to a former current directory.
std::string OwnFolder()
{
    const auto ownAddress = reinterpret_cast<uintptr_t>(&OwnFolder);
    const std::unique_ptr<FILE, int (*)(FILE*)> maps(std::fopen("/proc/self/maps", "r"), &std::fclose);
    char mapping[PATH_MAX + 100]; // as in: 7f0012340000-7f0012350000 r-xp 00001000 08:01 1234   /opt/host
    while (maps && std::fgets(mapping, sizeof mapping, maps.get()) != nullptr) {
        uintptr_t from = 0;
        uintptr_t to = 0;
        const bool isMapping = std::sscanf(mapping, "%" SCNxPTR "-%" SCNxPTR, &from, &to) == 2;
        if (isMapping && ownAddress >= from && ownAddress < to) {
            const std::string_view line = mapping;
            const size_t start = std::min(line.find('/'), line.size());
            return std::string(line.substr(start, line.rfind('/') + 1 - start));
        }
    }
    return {};
}

void* Load(const std::string& file)
{
    const std::string folder = OwnFolder();
    void* handle = folder.empty() ? nullptr : dlopen((folder + file).c_str(), RTLD_NOW | RTLD_LOCAL);
    return handle != nullptr ? handle : dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

} // namespace

EntryPoint Library::Find(const char* Function)
{
    void* handle = m_handle;
    if (handle == nullptr) {
        handle = Load(std::string("lib") + m_name + ".so");
        if (handle == nullptr) {
            return {.SystemError = ENOENT};
        }
        m_handle = handle;
    }
    void* const address = dlsym(handle, Function);
    if (address == nullptr) {
        return {.LibraryLoaded = true, .SystemError = ENOSYS};
    }
    return {.Address = reinterpret_cast<EntryPoint::Function>(address), .LibraryLoaded = true};
}

int32_t LastSystemError()
{
    return errno;
}

} // namespace acg
