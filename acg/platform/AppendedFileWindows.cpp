#include "acg/platform/AppendedFile.h"

#include <string>
#include <windows.h>

namespace acg
{

AppendedFile::~AppendedFile()
{
    if (IsOpen()) {
        CloseHandle(reinterpret_cast<HANDLE>(m_file));
    }
}

uint32_t AppendedFile::Open(const std::filesystem::path& file)
{
    m_file = reinterpret_cast<intptr_t>(CreateFileW(
        file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        /*lpSecurityAttributes=*/nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, /*hTemplateFile=*/nullptr));
    if (!IsOpen()) {
        return GetLastError();
    }
    LARGE_INTEGER size = {};
    m_isInLine = GetFileSizeEx(reinterpret_cast<HANDLE>(m_file), &size) != 0 && size.QuadPart != 0;
    return 0;
}

uint32_t AppendedFile::Append(std::string_view text)
{
    const std::string line = (m_isInLine ? "\n" : "") + std::string(text);
    for (size_t written = 0; written < line.size();) {
        OVERLAPPED atEnd = {};
        atEnd.Offset = atEnd.OffsetHigh = 0xFFFFFFFF; // the end of the file, wherever it is
        DWORD count = 0;
        const BOOL isWritten = WriteFile(reinterpret_cast<HANDLE>(m_file), &line[written],
                                         static_cast<DWORD>(line.size() - written), &count, &atEnd);
        if (isWritten == 0 || count == 0) {
            const uint32_t error = isWritten == 0 ? GetLastError() : ERROR_DISK_FULL;
            CutBack(written);
            return error;
        }
        written += count;
    }
    m_isInLine = false;
    return 0;
}

void AppendedFile::CutBack(size_t bytes)
{
    auto* const file = reinterpret_cast<HANDLE>(m_file);
    LARGE_INTEGER end = {};
    end.QuadPart = -static_cast<LONGLONG>(bytes);
    if (bytes != 0 && (SetFilePointerEx(file, end, /*lpNewFilePointer=*/nullptr, FILE_END) == 0 ||
                       SetEndOfFile(file) == 0)) {
        m_isInLine = true;
    }
}

uint32_t AppendedFile::Lock() const
{
    OVERLAPPED farAway = {}; // a byte that the file doesn't have, since others may read those that it has
    farAway.OffsetHigh = 0x7FFFFFFF;
    const BOOL isLocked =
        LockFileEx(reinterpret_cast<HANDLE>(m_file), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY,
                   /*dwReserved=*/0, /*nNumberOfBytesToLockLow=*/1, /*nNumberOfBytesToLockHigh=*/0, &farAway);
    return isLocked != 0 ? 0 : GetLastError();
}

const uint32_t AppendedFile::LockedByAnother = ERROR_LOCK_VIOLATION;

uint32_t AppendedFile::CutTo(uint64_t size)
{
    m_isInLine = false;
    LARGE_INTEGER end = {};
    end.QuadPart = static_cast<LONGLONG>(size);
    auto* const file = reinterpret_cast<HANDLE>(m_file);
    const bool isCut =
        SetFilePointerEx(file, end, /*lpNewFilePointer=*/nullptr, FILE_BEGIN) != 0 && SetEndOfFile(file) != 0;
    return isCut ? 0 : GetLastError();
}

uint32_t AppendedFile::Sync() const
{
    return FlushFileBuffers(reinterpret_cast<HANDLE>(m_file)) != 0 ? 0 : GetLastError();
}

} // namespace acg
