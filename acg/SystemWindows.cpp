#include "acg/System.h"

#include "acg/Text.h"

#include <atomic>
#include <cstdlib>
#include <io.h>
#include <memory>
#include <windows.h>

#include <shellapi.h>

namespace acg::tool
{

namespace
{

std::atomic<bool> interrupted = false;
UINT formerCodePage = 0;

BOOL WINAPI NoteInterrupt(DWORD /*event*/)
{
    return interrupted.exchange(true) ? FALSE : TRUE;
}

HANDLE HandleOf(std::FILE* stream)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

} // namespace

std::vector<std::string> Arguments(int /*Count*/, char** /*Values*/)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> values(
        CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
    std::vector<std::string> arguments;
    for (int at = 1; values && at < count; ++at) {
        arguments.push_back(ToUtf8(values.get()[at]));
    }
    return arguments;
}

std::optional<std::string> EnvironmentVariable(const char* Name)
{
    const wchar_t* const value = _wgetenv(ToWide(Name).c_str());
    return value != nullptr && *value != L'\0' ? std::optional(ToUtf8(value)) : std::nullopt;
}

bool IsTerminal(std::FILE* Stream)
{
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(Stream), &mode) != FALSE;
}

bool IsColourTerminal(std::FILE* Stream)
{
    constexpr DWORD escapeSequences = 0x0004; // since Windows 10
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(Stream), &mode) != FALSE && !EnvironmentVariable("NO_COLOR") &&
           SetConsoleMode(HandleOf(Stream), mode | escapeSequences) != FALSE;
}

void PrepareConsole()
{
    formerCodePage = GetConsoleOutputCP();
    if (SetConsoleOutputCP(CP_UTF8) != FALSE) {
        static_cast<void>(std::atexit([] { SetConsoleOutputCP(formerCodePage); }));
    }
    SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

bool WasInterrupted()
{
    return interrupted;
}

} // namespace acg::tool
