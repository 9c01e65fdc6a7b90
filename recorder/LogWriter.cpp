#include "recorder/LogWriter.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace recorder
{

namespace
{

/// What a process that is killed may lose of a round that goes on.
constexpr std::chrono::seconds LongestCount{1};

/// Calls with a masked part may look the same without being it.
bool IsComparable(const LoggedCall& call)
{
    return call.Call.find('*') == std::string::npos && call.Result.find('*') == std::string::npos;
}

bool IsSame(const LoggedCall& one, const LoggedCall& other)
{
    return one.Call == other.Call && one.Result == other.Result;
}

std::string ErrorText(uint32_t error)
{
    return error != 0 ? std::system_category().message(static_cast<int>(error)) : "out of memory";
}

} // namespace

void LogWriter::Open(const std::filesystem::path& File)
{
    const std::u8string name = File.u8string();
    m_name.assign(name.begin(), name.end());
    if (const uint32_t error = m_file.Open(File)) {
        exports::Report("the log can't be written: " + m_name + ": " + ErrorText(error));
    }
}

void LogWriter::Note(std::string_view Text)
{
    Flush();
    m_written.clear();
    m_round = 0;
    Write(NoteLine(Text), /*calls=*/0);
}

void LogWriter::Add(LoggedCall Ended)
{
    if (m_held.empty() && Ended.Start - m_from >= LongestCount) {
        WriteCount();
    }
    const bool isLast = Ended.Call.starts_with("CloseComm ");
    m_held.push_back(std::move(Ended));
    while (!m_held.empty() && !MayRepeat()) {
        if (m_round != 0) {
            WriteCount();
            m_round = 0;
            m_written.clear();
        } else {
            WriteFirstHeld();
        }
    }
    if (isLast) {
        Flush();
    }
}

void LogWriter::Flush()
{
    WriteCount();
    if (!m_held.empty()) {
        m_round = 0;
        m_written.clear();
    }
    while (!m_held.empty()) {
        WriteFirstHeld();
    }
    if (m_missing != 0) {
        Write({}, /*calls=*/0);
    }
}

void LogWriter::Miss() noexcept
{
    m_missing += 1 + static_cast<int64_t>(m_held.size() + m_round * static_cast<size_t>(m_times));
    m_held.clear();
    m_written.clear();
    m_round = 0;
    m_times = 0;
}

/// True if the held calls begin a repetition of the last lines; they are counted if they end it.
bool LogWriter::MayRepeat()
{
    if (!IsComparable(m_held.back())) {
        return false;
    }
    const size_t longest = m_round != 0 ? m_round : m_written.size();
    for (size_t calls = std::max(m_round, m_held.size()); calls <= longest; ++calls) {
        if (!std::equal(m_held.begin(), m_held.end(), m_written.end() - static_cast<ptrdiff_t>(calls),
                        IsSame)) {
            continue;
        }
        if (calls == m_held.size()) {
            m_from = m_times == 0 ? m_held.front().Start : m_from;
            m_until = std::max(m_from, m_held.back().Start + m_held.back().Duration);
            m_round = calls;
            ++m_times;
            m_held.clear();
        }
        return true;
    }
    return false;
}

void LogWriter::WriteFirstHeld()
{
    LoggedCall call = std::move(m_held.front());
    m_held.pop_front();
    if (Write(LogLine(call), /*calls=*/1)) {
        m_written.push_back(std::move(call));
        if (m_written.size() > LongestRound) {
            m_written.pop_front();
        }
    }
}

void LogWriter::WriteCount()
{
    const int64_t times = std::exchange(m_times, 0);
    if (times != 0) {
        Write(LogLine(Repetition{m_round, times, m_from, m_until - m_from}),
              static_cast<int64_t>(m_round) * times);
    }
}

/// After a failure no round goes on: the lines that its count would refer to may be missing.
bool LogWriter::Write(const std::string& line, int64_t calls)
{
    if (!m_file.IsOpen()) {
        return false;
    }
    const std::string gap = m_missing != 0 ? LogLine(Gap{m_missing}, ErrorText(m_error)) : "";
    const uint32_t error = m_file.Append(gap + line);
    if (error == 0) {
        m_missing = 0;
        m_error = 0;
        return true;
    }
    if (m_error == 0) {
        exports::Report("the log can't be written: " + m_name + ": " + ErrorText(error));
    }
    m_error = error;
    m_missing += calls;
    m_written.clear();
    m_round = 0;
    return false;
}

} // namespace recorder
