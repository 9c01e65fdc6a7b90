// Replacements for parts of the compiler's runtime. The originals format messages, which no host ever sees,
// and would bring strings and the printf family: a third of the DLL.
#include <chrono>
#include <cstdlib>
#include <exception>
#include <new>
#include <windows.h>

// Ends the process if an exception is never caught.
void __gnu_cxx::__verbose_terminate_handler()
{
    std::abort();
}

// What the standard library throws: a host receives E_UNEXPECTED or E_OUTOFMEMORY, never the message.
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
