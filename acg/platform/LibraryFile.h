// The library that this code is in, and libraries that are named by their path.
#pragma once

#include "acg/platform/Library.h"
#include "acg/platform/SystemPath.h"

namespace acg
{

/// The folder of the program or library that this code is linked into, with a separator after it, or empty
/// text if it isn't known.
[[nodiscard]] SystemPath OwnFolder();

/// The file name of a library, as in libACGReader330.so or ACGReader330.dll.
[[nodiscard]] SystemPath LibraryFileName(const char* name);

/// The same as Library::Find, in the library in that one file. file: a full path. It stays loaded.
[[nodiscard]] EntryPoint FindInFile(const SystemPath& file, const char* function);

} // namespace acg
