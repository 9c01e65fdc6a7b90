// Sets up and cleans up a DLL's own copy of the compiler's runtime when it is loaded and unloaded.
//
// In a process that has loaded the runtime's shared version, the compiler's start code registers the DLL's
// unwind tables with that one. The DLL's own unwinder then has none, and the first exception would end the
// process.
#include <cstddef>
#include <cstring>
#include <unwind.h>
#include <windows.h>

extern "C" IMAGE_DOS_HEADER __ImageBase; // the start of this DLL in memory

// The runtime's own functions, which no header of its declares.
extern "C" void __register_frame_info(const void* Tables, void* Registration);
extern "C" void* __deregister_frame_info(const void* Tables);
namespace __gnu_cxx
{
void __freeres(); // frees the emergency memory for exceptions
}

namespace
{

void* Registration[16]; // storage for the unwinder's registration, which takes half of it
const void* RegisteredTables = nullptr;

const void* UnwindTables()
{
    auto* const base = reinterpret_cast<const std::byte*>(&__ImageBase);
    auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + __ImageBase.e_lfanew);
    const auto* section = reinterpret_cast<const IMAGE_SECTION_HEADER*>(headers + 1);
    while (std::memcmp(section->Name, ".eh_fram", sizeof(section->Name)) != 0) { // each of these DLLs has it
        ++section;
    }
    return base + section->VirtualAddress;
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE /*self*/, DWORD reason, LPVOID isProcessEnd)
{
    if (reason == DLL_PROCESS_ATTACH) {
        if (_Unwind_FindEnclosingFunction(reinterpret_cast<void*>(&UnwindTables)) == nullptr) {
            RegisteredTables = UnwindTables();
            __register_frame_info(RegisteredTables, Registration);
        }
    } else if (reason == DLL_PROCESS_DETACH && isProcessEnd == nullptr) {
        if (RegisteredTables != nullptr) {
            __deregister_frame_info(RegisteredTables);
        }
        __gnu_cxx::__freeres();
    }
    return TRUE;
}
