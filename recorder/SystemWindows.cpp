#include "recorder/System.h"

#include <string>
#include <windows.h>

namespace recorder
{

uint32_t LastError()
{
    return ::GetLastError();
}

void SetLastError(uint32_t error)
{
    ::SetLastError(error);
}

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
        return LastError();
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
            const uint32_t error = isWritten == 0 ? LastError() : ERROR_DISK_FULL;
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

} // namespace recorder
