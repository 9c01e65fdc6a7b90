#include "acg/platform/Process.h"

#include <cstdlib>
#include <thread>

namespace acg
{

SystemPath EnvironmentVariable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing sets one meanwhile
    return value != nullptr ? value : "";
}

void Wait(std::chrono::microseconds time)
{
    std::this_thread::sleep_for(time);
}

} // namespace acg
