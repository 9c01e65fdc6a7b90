#include "acg/platform/FileReplacement.h"

#include <random>
#include <windows.h>

namespace acg
{

namespace
{

constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::error_code SystemError(DWORD code)
{
    return {static_cast<int>(code), std::system_category()};
}

/// The path of an open file, with its links followed; empty if it isn't known.
SystemPath PathOf(HANDLE file)
{
    constexpr DWORD LongestPath = 32767;
    SystemPath path(LongestPath, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, path.data(), LongestPath, 0);
    path.resize(length < LongestPath ? length : 0);
    return path;
}

/// An existing file: may it be replaced, and what is it called?
std::error_code Examine(HANDLE file, ExistingFile existing, SystemPath& path)
{
    BY_HANDLE_FILE_INFORMATION status = {};
    if (GetFileType(file) != FILE_TYPE_DISK || GetFileInformationByHandle(file, &status) == FALSE ||
        (status.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return make_error_code(NotARegularFile);
    }
    if (existing == ExistingFile::Kept) {
        return make_error_code(std::errc::file_exists);
    }
    if ((status.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) {
        return SystemError(ERROR_ACCESS_DENIED);
    }
    if ((GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        path = PathOf(file);
    }
    return path.empty() ? SystemError(ERROR_CANT_RESOLVE_FILENAME) : std::error_code();
}

/// A dot and six random letters or digits.
SystemPath RandomEnding()
{
    std::random_device source;
    SystemPath ending = L".";
    for (unsigned number = source(); ending.size() < 7; number /= 36) {
        ending += L"0123456789abcdefghijklmnopqrstuvwxyz"[number % 36];
    }
    return ending;
}

} // namespace

FileReplacement::~FileReplacement()
{
    if (m_handle != -1) {
        CloseHandle(reinterpret_cast<HANDLE>(m_handle));
    }
    if (!m_temporary.empty()) {
        DeleteFileW(m_temporary.c_str());
    }
}

std::error_code FileReplacement::Create(const SystemPath& path, ExistingFile existing)
{
    m_file = path;
    m_existing = existing;
    HANDLE const former = CreateFileW(m_file.c_str(), /*dwDesiredAccess=*/0, ShareAll, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (former != INVALID_HANDLE_VALUE) {
        const std::error_code error = Examine(former, m_existing, m_file);
        CloseHandle(former);
        if (error) {
            return error;
        }
    } else if (const DWORD error = GetLastError();
               error != ERROR_FILE_NOT_FOUND ||
               GetFileAttributesW(m_file.c_str()) != INVALID_FILE_ATTRIBUTES) {
        return SystemError(error); // a link to a file that isn't there, too: its path can't be had
    }

    const SystemPath name = m_file + RandomEnding();
    HANDLE const created = CreateFileW(name.c_str(), GENERIC_WRITE, /*dwShareMode=*/0, nullptr, CREATE_NEW,
                                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (created == INVALID_HANDLE_VALUE) {
        return SystemError(GetLastError());
    }
    m_handle = reinterpret_cast<intptr_t>(created);
    m_temporary = name;
    return {};
}

std::error_code FileReplacement::Finish(std::string_view contents)
{
    HANDLE const file = reinterpret_cast<HANDLE>(m_handle);
    DWORD written = 0;
    if (WriteFile(file, contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr) == FALSE ||
        FlushFileBuffers(file) == FALSE) {
        return SystemError(GetLastError());
    }
    m_handle = -1; // an open file can't be renamed
    CloseHandle(file);
    if (written != contents.size()) {
        return SystemError(ERROR_DISK_FULL);
    }
    const DWORD flags = m_existing == ExistingFile::Replaced ? MOVEFILE_REPLACE_EXISTING : 0;
    // Refused as long as another process reads the file, or replaces it.
    constexpr ULONGLONG LongestWait = 5000; // milliseconds
    constexpr DWORD Pause = 5;
    const ULONGLONG start = GetTickCount64();
    while (MoveFileExW(m_temporary.c_str(), m_file.c_str(), flags) == FALSE) {
        const DWORD error = GetLastError();
        if (error == ERROR_ALREADY_EXISTS) {
            return make_error_code(std::errc::file_exists);
        }
        if ((error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) ||
            GetTickCount64() - start > LongestWait) {
            return SystemError(error);
        }
        Sleep(Pause);
    }
    m_temporary.clear();
    return {};
}

std::error_code ReadContents(const SystemPath& path, std::vector<uint8_t>& contents)
{
    HANDLE const file = CreateFileW(path.c_str(), GENERIC_READ, ShareAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return SystemError(GetLastError());
    }
    DWORD length = 0;
    const bool isRead =
        ReadFile(file, contents.data(), static_cast<DWORD>(contents.size()), &length, nullptr) != FALSE;
    const std::error_code error = isRead ? std::error_code() : SystemError(GetLastError());
    CloseHandle(file);
    contents.resize(length);
    return error;
}

} // namespace acg
