#include "recorder/System.h"

#include <windows.h>

namespace recorder
{

uint32_t LastError()
{
    return ::GetLastError();
}

void SetLastError(uint32_t error)
{
    ::SetLastError(error);
}

} // namespace recorder
