#include "acg/platform/AppendedFile.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace acg
{

namespace
{

/// Keeps the signals from the thread that a write which fails ends the host by: a size limit, a closed pipe.
class WriteSignalsHeld
{
public:
    WriteSignalsHeld()
    {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGXFSZ);
        sigaddset(&m_signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_signals, &m_former);
    }
    ~WriteSignalsHeld() { pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }
    WriteSignalsHeld(const WriteSignalsHeld&) = delete;
    WriteSignalsHeld& operator=(const WriteSignalsHeld&) = delete;

    void Discard() const
    {
        const timespec noTime = {};
        sigtimedwait(&m_signals, nullptr, &noTime);
    }

private:
    sigset_t m_signals = {};
    sigset_t m_former = {};
};

uint32_t LastError()
{
    return static_cast<uint32_t>(errno);
}

/// So that a new file outlasts a power failure. Not every file system can.
void SyncFolderOf(const std::filesystem::path& file)
{
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        fsync(handle);
        close(handle);
    }
}

} // namespace

AppendedFile::~AppendedFile()
{
    if (IsOpen()) {
        close(static_cast<int>(m_file));
    }
}

uint32_t AppendedFile::Open(const std::filesystem::path& file)
{
    m_file = open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR);
    if (!IsOpen()) {
        return LastError();
    }
    struct stat found = {};
    m_isInLine = fstat(static_cast<int>(m_file), &found) == 0 && found.st_size != 0;
    if (!m_isInLine) {
        SyncFolderOf(file);
    }
    return 0;
}

uint32_t AppendedFile::Append(std::string_view text)
{
    const std::string line = (m_isInLine ? "\n" : "") + std::string(text);
    const WriteSignalsHeld held;
    for (size_t written = 0; written < line.size();) {
        const ssize_t count = write(static_cast<int>(m_file), &line[written], line.size() - written);
        if (count > 0) {
            written += static_cast<size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            const uint32_t error = count == 0 ? ENOSPC : LastError();
            held.Discard();
            CutBack(written);
            return error;
        }
    }
    m_isInLine = false;
    return 0;
}

/// Unless something else has been appended since.
void AppendedFile::CutBack(size_t bytes)
{
    const auto file = static_cast<int>(m_file);
    struct stat found = {};
    const bool isAtEnd =
        fstat(file, &found) == 0 && S_ISREG(found.st_mode) && lseek(file, 0, SEEK_CUR) == found.st_size;
    if (bytes != 0 && (!isAtEnd || ftruncate(file, found.st_size - static_cast<off_t>(bytes)) != 0)) {
        m_isInLine = true;
    }
}

uint32_t AppendedFile::Lock() const
{
    return flock(static_cast<int>(m_file), LOCK_EX | LOCK_NB) == 0 ? 0 : LastError();
}

const uint32_t AppendedFile::LockedByAnother = EWOULDBLOCK;

uint32_t AppendedFile::CutTo(uint64_t size)
{
    m_isInLine = false;
    return ftruncate(static_cast<int>(m_file), static_cast<off_t>(size)) == 0 ? 0 : LastError();
}

uint32_t AppendedFile::Sync() const
{
    return fsync(static_cast<int>(m_file)) == 0 ? 0 : LastError();
}

} // namespace acg
