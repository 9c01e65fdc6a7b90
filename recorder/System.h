// What the recorder needs of the system, beside the loading of a library.
#pragma once

#include <cstdint>
#include <filesystem>

namespace recorder
{

/// The file that every system looks for.
[[nodiscard]] const char* LibraryFileName();

/// Empty where the variable isn't set. Name: ASCII.
[[nodiscard]] std::filesystem::path PathVariable(const char* Name);

/// The error code that a host reads after a call: errno, or GetLastError.
[[nodiscard]] uint32_t LastError();
void SetLastError(uint32_t Error);

} // namespace recorder
