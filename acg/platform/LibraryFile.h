// The library that this code is in, and libraries that are named by their path.
#pragma once

#include "acg/platform/Library.h"
#include "acg/platform/SystemPath.h"

namespace acg
{

/// The folder of the program or library that this code is linked into, with a separator after it, or empty
/// text if it isn't known.
[[nodiscard]] SystemPath OwnFolder();

/// The same as Library::Find, in the library in that one file. File: a full path. It stays loaded.
[[nodiscard]] EntryPoint FindInFile(const SystemPath& File, const char* Function);

} // namespace acg
