// Writes a session to its log: a round of calls that repeats is written once, with its count; a line is
// written whole or not at all.
#pragma once

#include "acg/platform/AppendedFile.h"
#include "session/SessionLog.h"

#include <chrono>
#include <deque>
#include <filesystem>
#include <string>
#include <string_view>

namespace recorder
{

/// Calls that repeat the last lines are held back. After more than LongestRound of them, or a second, a line
/// with their count replaces them, and one more follows each second. Calls that can't be written are counted,
/// and a line in the log says so as soon as one can be written again. Used by one thread at a time.
class LogWriter
{
public:
    /// Appends to the file, and creates it for its owner alone if there is none. If that fails, nothing is
    /// written and the standard error says why.
    void Open(const std::filesystem::path& file);
    void Note(std::string_view text);
    void Add(session::LoggedCall ended);
    /// Writes what is held back.
    void Flush();
    /// Counts a call that couldn't be added for want of memory.
    void Miss() noexcept;

private:
    [[nodiscard]] bool MayRepeat();
    void Count();
    void EndRound();
    void WriteFirstHeld();
    void WriteCount();
    bool Write(const std::string& line, int64_t calls);

    acg::AppendedFile m_file;
    std::string m_name;
    int64_t m_missing = 0; ///< calls since the last line that could be written
    uint32_t m_error = 0;  ///< the system's code, if the last line couldn't be written

    std::deque<session::LoggedCall> m_written; ///< the last lines, as far as they may be a round
    std::deque<session::LoggedCall> m_held;    ///< not in the log yet
    size_t m_round = 0;                        ///< how many of the last lines the held ones repeat
    bool m_isCounted = false;                  ///< whole rounds are counted, not held
    int64_t m_times = 0;                       ///< counted rounds that aren't in the log yet
    std::chrono::microseconds m_from{0};       ///< the start of the first of these
    std::chrono::microseconds m_until{0};      ///< the end of the last
};

} // namespace recorder
