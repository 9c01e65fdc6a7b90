#include "acg/platform/LibraryFile.h"

#include <cstring>
#include <string>
#include <windows.h>

extern "C" IMAGE_DOS_HEADER __ImageBase; // the start of this program or library in memory

namespace acg
{

namespace
{

HMODULE Load(const std::wstring& file)
{
    // Neither search includes the current directory, nor does the search for the library's dependencies.
    DWORD causeHere = ERROR_MOD_NOT_FOUND;
    if (const std::wstring folder = OwnFolder(); !folder.empty()) {
        HMODULE const module =
            LoadLibraryExW((folder + file).c_str(), nullptr,
                           LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
        if (module != nullptr) {
            return module;
        }
        causeHere = GetLastError();
    }
    HMODULE const module = LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    if (module == nullptr && causeHere != ERROR_MOD_NOT_FOUND) {
        SetLastError(causeHere); // the file exists: what is wrong with it says more
    }
    return module;
}

EntryPoint FindIn(HMODULE library, const char* function)
{
    const FARPROC address = GetProcAddress(library, function);
    if (address == nullptr) {
        return {.LibraryLoaded = true, .SystemError = static_cast<int32_t>(GetLastError())};
    }
    return {.Address = reinterpret_cast<EntryPoint::Function>(address), .LibraryLoaded = true};
}

} // namespace

SystemPath OwnPath()
{
    constexpr DWORD LongestPath = 32767;
    std::wstring path(LongestPath, L'\0');
    path.resize(GetModuleFileNameW(reinterpret_cast<HMODULE>(&__ImageBase), path.data(), LongestPath));
    return path;
}

SystemPath LibraryFileName(const char* name)
{
    return std::wstring(name, name + std::strlen(name)) + L".dll";
}

EntryPoint FindInFile(const SystemPath& file, const char* function)
{
    HMODULE const module = LoadLibraryExW(
        file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    if (module == nullptr) {
        return {.SystemError = static_cast<int32_t>(GetLastError())};
    }
    return FindIn(module, function);
}

EntryPoint Library::Find(const char* function)
{
    void* handle = m_handle;
    if (handle == nullptr) {
        handle = Load(LibraryFileName(m_name));
        if (handle == nullptr) {
            return {.SystemError = static_cast<int32_t>(GetLastError())};
        }
        m_handle = handle;
    }
    return FindIn(static_cast<HMODULE>(handle), function);
}

} // namespace acg
