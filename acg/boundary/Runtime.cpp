// What differs from the compiler's runtime in the DLL.
#include <chrono>
#include <cstdlib>
#include <exception>
#include <windows.h>

// The runtime's handler prints the exception that nothing caught, and with it come the demangler and the
// printf family: 77,000 bytes. A runtime that doesn't call this one loses nothing but that.
void __gnu_cxx::__verbose_terminate_handler()
{
    std::abort();
}

// The runtime's clock would follow the time of day, which can be set.
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
