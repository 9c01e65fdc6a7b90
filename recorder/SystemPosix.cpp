#include "recorder/System.h"

#include <cerrno>

namespace recorder
{

uint32_t LastError()
{
    return static_cast<uint32_t>(errno);
}

void SetLastError(uint32_t error)
{
    errno = static_cast<int>(error);
}

} // namespace recorder
