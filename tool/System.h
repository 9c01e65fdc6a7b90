// What the program needs of the system: its arguments, the user's language, the terminal, and Ctrl-C. All
// text is UTF-8.
#pragma once

#include "acg/platform/Library.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace acg::tool
{

/// The arguments after the program's name.
[[nodiscard]] std::vector<std::string> Arguments(int count, char** values);

/// The user's language by its two letters, as in "fr"; empty if it isn't known.
[[nodiscard]] std::string UserLanguage();

[[nodiscard]] bool IsTerminal(std::FILE* stream);
/// True for a terminal that understands the escape sequences of colour.
[[nodiscard]] bool IsColourTerminal(std::FILE* stream);

struct LoadedLibrary {
    std::string Path;        ///< full
    std::string Description; ///< by the library itself; empty if it has none
    std::string Version;     ///< the same
};
/// The library that a function is in.
[[nodiscard]] LoadedLibrary LibraryOf(EntryPoint::Function function);

/// Prepares the terminal for UTF-8, and has the first Ctrl-C noted; a second one ends the program at once.
void PrepareConsole();
/// Sleeps so long; Ctrl-C ends it.
void Pause(std::chrono::milliseconds duration);
/// True once Ctrl-C was pressed, or the system asked the program to end.
[[nodiscard]] bool WasInterrupted();

} // namespace acg::tool
