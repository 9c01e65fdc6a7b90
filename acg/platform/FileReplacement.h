// Replaces a file in one step: at any time it has its old contents or the new ones, even if several processes
// write it.
#pragma once

#include "acg/platform/SystemPath.h"

#include <cstdint>
#include <string_view>
#include <system_error>
#include <vector>

namespace acg
{

/// What is to become of a file that has the name already.
enum class ExistingFile {
    Kept,
    Replaced
};

/// The error of a name that something other than a regular file has: a folder, a device. A code that no call
/// for a file returns.
inline constexpr std::errc NotARegularFile = std::errc::wrong_protocol_type;

/// A temporary file beside the one that it is to replace: its name and a dot, with six random letters or
/// digits after it. A link is followed to the file that it names, whether that exists or not; on
/// Windows it must exist.
///
/// On a system with file modes the file is its owner's alone if it is new; otherwise it keeps its mode, its
/// group and, if the process may, its owner. A group that can't be kept loses its rights. On Windows a file
/// has the rights of its folder.
class FileReplacement
{
public:
    FileReplacement() = default;
    /// Removes the temporary file, unless it has replaced the other.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Creates the temporary file. Fails with std::errc::file_exists for a file that is to be kept, with
    /// std::errc::permission_denied for one that is read-only (that its owner may not write, whoever asks),
    /// with NotARegularFile, or with an error of the system. To be called once.
    [[nodiscard]] std::error_code Create(const SystemPath& path, ExistingFile existing);

    /// Writes the contents to the disk, and replaces the file. After a failure, of the same kinds, the file
    /// is unchanged. To be called once, after Create.
    [[nodiscard]] std::error_code Finish(std::string_view contents);

private:
    SystemPath m_file;
    SystemPath m_temporary; ///< empty if there is none
    intptr_t m_handle = -1; ///< the system's, of the temporary file; -1 if it isn't open
    ExistingFile m_existing = ExistingFile::Kept;
};

/// Reads a file that others may replace meanwhile. The size of contents is the most that is read; it is cut
/// to what there was.
[[nodiscard]] std::error_code ReadContents(const SystemPath& path, std::vector<uint8_t>& contents);

} // namespace acg
