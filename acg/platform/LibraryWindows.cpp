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

/// library: null if it couldn't be loaded, for which the thread's last error is the reason.
EntryPoint FindIn(HMODULE library, const char* function)
{
    const FARPROC address = library != nullptr ? GetProcAddress(library, function) : nullptr;
    return {.Address = reinterpret_cast<EntryPoint::Function>(address),
            .LibraryLoaded = library != nullptr,
            .SystemError = address != nullptr ? 0 : static_cast<int32_t>(GetLastError())};
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
    return FindIn(LoadLibraryExW(file.c_str(), nullptr,
                                 LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS),
                  function);
}

EntryPoint Library::Find(const char* function)
{
    if (m_handle == nullptr) {
        m_handle = Load(LibraryFileName(m_name));
    }
    return FindIn(static_cast<HMODULE>(m_handle.load()), function);
}

} // namespace acg
