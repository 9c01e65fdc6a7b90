#include "tool/System.h"

#include "tool/Text.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <io.h>
#include <memory>
#include <string_view>
#include <windows.h>

#include <shellapi.h>
#include <winver.h>

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

/// A text of a file's version resource, in the first of its languages; empty if there is none.
std::string VersionText(const std::vector<char>& resource, const char* name)
{
    const WORD* language = nullptr; // and the code page
    const wchar_t* text = nullptr;
    UINT size = 0;
    const auto find = [&](const std::string& path, auto& value) {
        return !resource.empty() &&
               VerQueryValueW(resource.data(), ToWide(path).c_str(),
                              const_cast<void**>(reinterpret_cast<const void**>(&value)), &size) != FALSE;
    };
    if (!find("\\VarFileInfo\\Translation", language) || size < 2 * sizeof(WORD) ||
        !find(Format("\\StringFileInfo\\%04X%04X\\%s", language[0], language[1], name), text)) {
        return {};
    }
    const std::wstring_view all(text, size);
    return ToUtf8(all.substr(0, all.find(L'\0')));
}

HANDLE HandleOf(std::FILE* stream)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
}

} // namespace

std::vector<std::string> Arguments(int /*count*/, char** /*values*/)
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

std::string UserLanguage()
{
    const LANGID language = PRIMARYLANGID(GetUserDefaultUILanguage());
    return language == LANG_FRENCH ? "fr" : language == LANG_ENGLISH ? "en" : "";
}

bool IsTerminal(std::FILE* stream)
{
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != FALSE;
}

bool IsColourTerminal(std::FILE* stream)
{
    constexpr DWORD EscapeSequences = 0x0004; // since Windows 10
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(stream), &mode) != FALSE && !Variable("NO_COLOR") &&
           SetConsoleMode(HandleOf(stream), mode | EscapeSequences) != FALSE;
}

LoadedLibrary LibraryOf(EntryPoint::Function function)
{
    HMODULE module = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<LPCWSTR>(function), &module) == FALSE) {
        return {};
    }
    constexpr DWORD LongestPath = 32767;
    std::wstring path(LongestPath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), LongestPath));
    std::vector<char> resource(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    if (GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()) == FALSE) {
        resource.clear();
    }
    return {ToUtf8(path), VersionText(resource, "FileDescription"), VersionText(resource, "FileVersion")};
}

void PrepareConsole()
{
    formerCodePage = GetConsoleOutputCP();
    if (SetConsoleOutputCP(CP_UTF8) != FALSE) {
        static_cast<void>(std::atexit([] { SetConsoleOutputCP(formerCodePage); }));
    }
    SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

void Pause(std::chrono::milliseconds duration)
{
    constexpr std::chrono::milliseconds Step{50}; // Ctrl-C is noted in a thread of its own
    for (; duration.count() > 0 && !WasInterrupted(); duration -= Step) {
        Sleep(static_cast<DWORD>(std::min(duration, Step).count()));
    }
}

bool WasInterrupted()
{
    return interrupted;
}

} // namespace acg::tool
