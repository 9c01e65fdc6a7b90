// What a DLL of ours does about its own copy of the compiler's runtime when it is loaded and unloaded.
//
// In a process that has loaded the runtime's shared version, the compiler's start code hands the DLL's unwind
// tables to that one. The DLL's own unwinder then knows none, and the first exception would end the process.
#include <cstddef>
#include <cstring>
#include <unwind.h>
#include <windows.h>

extern "C" IMAGE_DOS_HEADER __ImageBase; // where the linker has put this DLL

// The runtime's own functions, which no header of its declares.
extern "C" void __register_frame_info(const void* Tables, void* Registration);
extern "C" void* __deregister_frame_info(const void* Tables);
namespace __gnu_cxx
{
void __freeres(); // frees the memory kept for exceptions that are thrown when there is none
}

namespace
{

void* Registration[16]; // what the unwinder keeps of a registration, in half of that
const void* RegisteredTables = nullptr;

const void* UnwindTables()
{
    auto* const base = reinterpret_cast<const std::byte*>(&__ImageBase);
    auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + __ImageBase.e_lfanew);
    const auto* section = reinterpret_cast<const IMAGE_SECTION_HEADER*>(headers + 1);
    while (std::memcmp(section->Name, ".eh_fram", sizeof(section->Name)) != 0) { // every DLL of ours has it
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
