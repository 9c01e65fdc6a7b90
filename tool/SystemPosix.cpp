#include "tool/System.h"

#include "acg/platform/LibraryFile.h"
#include "tool/Text.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace acg::tool
{

namespace
{

volatile std::sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int /*signal*/)
{
    interrupted = 1;
}

} // namespace

std::vector<std::string> Arguments(int count, char** values)
{
    return count > 0 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

std::string UserLanguage()
{
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const std::optional<std::string> locale = Variable(name)) { // as in fr_FR.UTF-8
            return locale->substr(0, locale->find_first_of("_.@"));
        }
    }
    return {};
}

bool IsTerminal(std::FILE* stream)
{
    return isatty(fileno(stream)) == 1;
}

bool IsColourTerminal(std::FILE* stream)
{
    return IsTerminal(stream) && !Variable("NO_COLOR") && Variable("TERM").value_or("dumb") != "dumb";
}

LoadedLibrary LibraryOf(EntryPoint::Function function)
{
    Dl_info info = {};
    if (dladdr(reinterpret_cast<void*>(function), &info) == 0) {
        return {};
    }
    LoadedLibrary library{.Path = std::filesystem::absolute(info.dli_fname)};
    // docs/reader-library.md: the version, a blank, and the description.
    if (const EntryPoint entry = FindInFile(info.dli_fname, "ACGReaderLibraryVersion");
        entry.Address != nullptr) {
        const char* const told = reinterpret_cast<const char* (*)()>(entry.Address)();
        const std::string text = told != nullptr ? told : "";
        library.Version = text.substr(0, text.find(' '));
        library.Description = text.substr(std::min(library.Version.size() + 1, text.size()));
    }
    return library;
}

void PrepareConsole()
{
    struct sigaction action = {};
    action.sa_handler = NoteInterrupt;
    // Without SA_RESTART, so that a question on the terminal ends as well.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM}) {
        sigaction(signal, &action, nullptr);
    }
    action.sa_handler = SIG_IGN; // a reader that has gone is a failure of writing, which is reported
    sigaction(SIGPIPE, &action, nullptr);
}

void Pause(std::chrono::milliseconds duration)
{
    const auto milliseconds = static_cast<int>(duration.count());
    static_cast<void>(poll(nullptr, 0, milliseconds)); // a signal ends it
}

bool WasInterrupted()
{
    return interrupted != 0;
}

} // namespace acg::tool
