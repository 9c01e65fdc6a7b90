// The library that this code is in, and libraries that are named by their path.
#pragma once

#include "acg/platform/Library.h"
#include "acg/platform/SystemPath.h"

namespace acg
{

/// The path of the program or library that this code is linked into; empty if it isn't known.
[[nodiscard]] SystemPath OwnPath();

/// Its folder, with a separator after it; empty if it isn't known.
[[nodiscard]] inline SystemPath OwnFolder()
{
    const SystemPath path = OwnPath();
    return path.substr(0, path.rfind(std::filesystem::path::preferred_separator) + 1);
}

/// The file name of a library, as in libACGReader330.so or ACGReader330.dll.
[[nodiscard]] SystemPath LibraryFileName(const char* name);

/// The same as Library::Find, in the library in that one file. file: a full path. It stays loaded.
[[nodiscard]] EntryPoint FindInFile(const SystemPath& file, const char* function);

} // namespace acg
