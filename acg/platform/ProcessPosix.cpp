#include "acg/platform/Process.h"

#include <cstdlib>

namespace acg
{

SystemPath EnvironmentVariable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing sets one meanwhile
    return value != nullptr ? value : "";
}

} // namespace acg
