#include "recorder/System.h"

#include <cerrno>
#include <cstdlib>

namespace recorder
{

const char* LibraryFileName()
{
    return "libACGReader330.so";
}

std::filesystem::path PathVariable(const char* Name)
{
    const char* const value = std::getenv(Name);
    return value != nullptr ? value : "";
}

uint32_t LastError()
{
    return static_cast<uint32_t>(errno);
}

void SetLastError(uint32_t Error)
{
    errno = static_cast<int>(Error);
}

} // namespace recorder
