// What the recorder needs of the system, beside the loading of a library and the file of its log.
#pragma once

#include <cstdint>

namespace recorder
{

/// The error code that a host reads after a call: errno, or GetLastError.
[[nodiscard]] uint32_t LastError();
void SetLastError(uint32_t error);

} // namespace recorder
