#include "platform/Library.h"

#include <cerrno>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <string>

namespace acg
{

namespace
{

/// The folder of the program or shared object that this code is linked into, with a slash behind it, or
/// empty text where it isn't known.
std::string OwnFolder()
{
    Dl_info info{};
    link_map* object = nullptr;
    if (dladdr1(reinterpret_cast<void*>(&OwnFolder), &info, reinterpret_cast<void**>(&object),
                RTLD_DL_LINKMAP) == 0) {
        return {};
    }
    std::filesystem::path path = object->l_name;
    if (path.empty()) { // the loader keeps no name for the program itself
        std::error_code unreadable;
        path = std::filesystem::read_symlink("/proc/self/exe", unreadable);
    }
    // A relative name would be looked up in the current directory.
    return path.is_absolute() ? path.parent_path().string() + "/" : std::string();
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
