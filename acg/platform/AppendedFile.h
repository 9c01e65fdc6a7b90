// A file that lines are appended to, as that of a log.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace acg
{

/// A file that text is appended to, all of it or nothing.
class AppendedFile
{
public:
    AppendedFile() = default;
    ~AppendedFile();
    AppendedFile(const AppendedFile&) = delete;
    AppendedFile& operator=(const AppendedFile&) = delete;

    /// Creates the file, for its owner alone, if there is none. What the file has already ends with its line.
    /// Returns 0, or the system's error code.
    [[nodiscard]] uint32_t Open(const std::filesystem::path& file);
    [[nodiscard]] bool IsOpen() const { return m_file != Closed; }
    /// Returns 0, or the system's error code: the file is then as before, or, if it can't be cut back, ends
    /// with a piece of the text, whose line the next text ends.
    [[nodiscard]] uint32_t Append(std::string_view text);
    /// Locks the file until this object goes, for those who lock it too. Returns 0, LockedByAnother, or the
    /// system's error code.
    [[nodiscard]] uint32_t Lock() const;
    static const uint32_t LockedByAnother;
    /// Cuts the file to so many bytes, the last one a line feed. Returns 0, or the system's error code.
    [[nodiscard]] uint32_t CutTo(uint64_t size);
    /// Returns 0 once what was appended is on the disk, or the system's error code.
    [[nodiscard]] uint32_t Sync() const;

private:
    static constexpr intptr_t Closed = -1;

    void CutBack(size_t bytes);

    intptr_t m_file = Closed;
    bool m_isInLine = false; ///< the next text begins with a line feed
};

} // namespace acg
