// Parts of the compiler's runtime in the component's own words. The runtime's would bring text for people,
// and with it strings and the printf family, a third of the DLL, which no host ever sees.
#include <chrono>
#include <cstdlib>
#include <exception>
#include <new>
#include <windows.h>

// What ends the process if an exception ever had nowhere to go.
void __gnu_cxx::__verbose_terminate_handler()
{
    std::abort();
}

// What the standard library throws: to a host it is E_UNEXPECTED, whatever it says, or E_OUTOFMEMORY.
namespace std
{

// clang-format off
void __throw_length_error(const char*) { throw exception(); }
void __throw_logic_error(const char*) { throw exception(); }
void __throw_out_of_range_fmt(const char*, ...) { throw exception(); }
void __throw_bad_function_call() { throw exception(); }
void __throw_bad_alloc() { throw bad_alloc(); }
void __throw_bad_array_new_length() { throw bad_alloc(); }
// clang-format on

} // namespace std

// The runtime's would follow the time of day, which may be set.
std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept
{
    LARGE_INTEGER ticks;
    LARGE_INTEGER ticksPerSecond;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&ticksPerSecond);
    const seconds whole(ticks.QuadPart / ticksPerSecond.QuadPart);
    return time_point(whole + nanoseconds(ticks.QuadPart % ticksPerSecond.QuadPart * std::nano::den /
                                          ticksPerSecond.QuadPart));
}
