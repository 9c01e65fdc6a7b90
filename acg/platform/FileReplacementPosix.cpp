#include "acg/platform/FileReplacement.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace acg
{

namespace
{

std::error_code LastError()
{
    return {errno, std::generic_category()};
}

/// The path at which a chain of links ends.
std::filesystem::path ResolveLinks(std::filesystem::path file)
{
    constexpr int MaxLinks = 40; // as the system follows
    std::error_code end;         // the last file is no link
    for (int links = 0; links < MaxLinks && !end; ++links) {
        const std::filesystem::path named = std::filesystem::read_symlink(file, end);
        file = end ? file : file.parent_path() / named;
    }
    return file;
}

bool WriteAll(int file, std::string_view contents)
{
    while (!contents.empty()) {
        const ssize_t written = write(file, contents.data(), contents.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        contents.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
    return fsync(file) == 0;
}

/// Gives a file the rights of the one that it replaces.
bool CopyRights(const struct stat& from, int file)
{
    static_cast<void>(fchown(file, from.st_uid, static_cast<gid_t>(-1)) == 0); // only root may
    mode_t mode = from.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
    if (fchown(file, static_cast<uid_t>(-1), from.st_gid) != 0) {
        mode &= ~static_cast<mode_t>(S_IRWXG); // they were another group's
    }
    return fchmod(file, mode) == 0;
}

} // namespace

FileReplacement::~FileReplacement()
{
    if (m_handle != -1) {
        close(static_cast<int>(m_handle)); // what is to stay has been written by fsync
    }
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
}

std::error_code FileReplacement::Create(const SystemPath& path, ExistingFile existing)
{
    struct stat status = {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if ((!exists && errno != ENOENT) || path.empty()) {
        return LastError();
    }
    if (exists && !S_ISREG(status.st_mode)) {
        return make_error_code(NotARegularFile);
    }
    if (exists && existing == ExistingFile::Kept) {
        return make_error_code(std::errc::file_exists);
    }
    if (exists && (status.st_mode & S_IWUSR) == 0) {
        return make_error_code(std::errc::permission_denied); // a renaming doesn't look at the mode
    }
    m_file = ResolveLinks(path).native();
    m_existing = existing;
    std::string name = m_file + ".XXXXXX";
    m_handle = mkostemp(name.data(), O_CLOEXEC);
    if (m_handle == -1) {
        return LastError();
    }
    m_temporary = name;
    return {};
}

std::error_code FileReplacement::Finish(std::string_view contents)
{
    const int file = static_cast<int>(m_handle);
    struct stat former = {};
    const bool isReplaced = lstat(m_file.c_str(), &former) == 0 && S_ISREG(former.st_mode);
    if (!WriteAll(file, contents) || (isReplaced && !CopyRights(former, file))) {
        return LastError();
    }
    if (m_existing == ExistingFile::Kept) {
        // Unlike a renaming, a second name never replaces a file; the first one then goes.
        if (link(m_temporary.c_str(), m_file.c_str()) == 0) {
            return {};
        }
        // A file system without links, as on a stick, leaves a moment between looking and renaming.
        if (errno == EEXIST || lstat(m_file.c_str(), &former) == 0 || errno != ENOENT) {
            return make_error_code(std::errc::file_exists);
        }
    }
    if (std::rename(m_temporary.c_str(), m_file.c_str()) != 0) {
        return LastError();
    }
    m_temporary.clear();
    return {};
}

std::error_code ReadContents(const SystemPath& path, std::vector<uint8_t>& contents)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rbe"), &std::fclose);
    contents.resize(file ? std::fread(contents.data(), 1, contents.size(), file.get()) : 0);
    return !file || std::ferror(file.get()) != 0 ? LastError() : std::error_code();
}

} // namespace acg
