#include "boundary/TypeLibrary.h"

#include "boundary/Results.h"

#include <mutex>
#include <oleauto.h>

extern "C" IMAGE_DOS_HEADER __ImageBase; // where the linker has put this DLL

namespace acg
{

namespace
{

// Objects of several threads share the library. A plain pointer: a destructor would run while the DLL is
// being unloaded, when it is too late to call the system.
std::mutex LibraryMutex;
ITypeLib* LoadedLibrary = nullptr;

} // namespace

std::wstring OwnPath()
{
    constexpr DWORD LongestPath = 32767;
    std::wstring path(LongestPath, L'\0');
    path.resize(GetModuleFileNameW(reinterpret_cast<HMODULE>(&__ImageBase), path.data(), LongestPath));
    Check(path.empty() ? HRESULT_FROM_WIN32(GetLastError()) : S_OK);
    return path;
}

HRESULT TypeInfoOf(REFGUID Id, ITypeInfo** Info) noexcept
{
    return Guarded([&] {
        Given(Info) = nullptr;
        const std::lock_guard lock(LibraryMutex);
        if (LoadedLibrary == nullptr) {
            Check(LoadTypeLibEx(OwnPath().c_str(), REGKIND_NONE, &LoadedLibrary));
        }
        Check(LoadedLibrary->GetTypeInfoOfGuid(Id, Info));
    });
}

void LetGoOfTypeLibrary() noexcept
{
    const std::lock_guard lock(LibraryMutex);
    if (LoadedLibrary != nullptr) {
        LoadedLibrary->Release();
        LoadedLibrary = nullptr;
    }
}

} // namespace acg
