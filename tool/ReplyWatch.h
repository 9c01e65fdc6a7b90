// Whether the reader answered with a whole block. The class fills a reply that is too short with zeros, which
// a user must not take for the card's contents.
#pragma once

#include "acg/reader/ReaderDLL.h"

namespace acg::tool
{

/// The reader library of this process, with the replies to "read block" looked at.
[[nodiscard]] ReaderDLL WatchedLibrary();

/// False where the latest of them was neither 32 characters long nor a status letter.
[[nodiscard]] bool WasWholeBlock();

} // namespace acg::tool
