#include "recorder/LogWriter.h"

#include "acg/platform/SystemPath.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace recorder
{

namespace
{

/// What a process that is killed may lose of a round that goes on.
constexpr std::chrono::seconds LongestCount{1};

std::string ErrorText(uint32_t error)
{
    return error != 0 ? std::system_category().message(static_cast<int>(error)) : "out of memory";
}

} // namespace

void LogWriter::Open(const std::filesystem::path& file)
{
    m_name = acg::Utf8Of(file);
    if (const uint32_t error = m_file.Open(file)) {
        acgreader::Report("the log can't be written: " + m_name + ": " + ErrorText(error));
    }
}

void LogWriter::Note(std::string_view text)
{
    Flush();
    EndRound();
    Write(session::NoteLine(text), /*calls=*/0);
}

void LogWriter::Add(session::LoggedCall ended)
{
    if (m_times == 0 && !m_held.empty() && ended.Start - m_held.front().Start >= LongestCount) {
        Count();
    }
    if (m_times != 0 && ended.Start - m_from >= LongestCount) {
        WriteCount();
    }
    m_held.push_back(std::move(ended));
    while (!m_held.empty() && !MayRepeat()) {
        if (m_isCounted) {
            EndRound();
        } else {
            WriteFirstHeld();
        }
    }
    if (m_isCounted || m_held.size() > session::LongestRound) {
        Count();
    }
}

void LogWriter::Flush()
{
    if (m_isCounted) {
        WriteCount();
        if (!m_held.empty()) {
            EndRound();
        }
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
    m_missing += 1 + static_cast<int64_t>(m_held.size()) + m_times * static_cast<int64_t>(m_round);
    m_held.clear();
    m_times = 0;
    m_isCounted = false;
    m_written.clear();
}

/// True if the held calls go on as the last lines do, which are then m_round. Calls with a masked part may
/// look the same without being it.
bool LogWriter::MayRepeat()
{
    const session::LoggedCall& added = m_held.back();
    if (added.Call.find('*') != std::string::npos || added.Result.find('*') != std::string::npos) {
        return false;
    }
    const auto isRound = [this](size_t calls) {
        const size_t begin = m_written.size() - calls;
        for (size_t at = 0; at < m_held.size(); ++at) {
            const session::LoggedCall& line = m_written[begin + at % calls];
            if (m_held[at].Call != line.Call || m_held[at].Result != line.Result) {
                return false;
            }
        }
        return true;
    };
    if (m_isCounted) {
        return isRound(m_round);
    }
    for (m_round = 1; m_round <= m_written.size(); ++m_round) {
        if (isRound(m_round)) {
            return true;
        }
    }
    return false;
}

/// Counts the held calls, but for those after the last whole round.
void LogWriter::Count()
{
    for (; m_held.size() >= m_round; ++m_times) {
        const auto end = m_held.begin() + static_cast<ptrdiff_t>(m_round);
        const session::LoggedCall& last = *std::prev(end);
        m_from = m_times == 0 ? m_held.front().Start : m_from;
        m_until = std::max(m_from, last.Start + last.Duration);
        m_held.erase(m_held.begin(), end);
        m_isCounted = true;
    }
}

void LogWriter::EndRound()
{
    WriteCount();
    m_isCounted = false;
    m_written.clear();
}

void LogWriter::WriteFirstHeld()
{
    session::LoggedCall call = std::move(m_held.front());
    m_held.pop_front();
    if (Write(session::LogLine(call), /*calls=*/1)) {
        m_written.push_back(std::move(call));
        if (m_written.size() > session::LongestRound) {
            m_written.pop_front();
        }
    }
}

void LogWriter::WriteCount()
{
    const int64_t times = std::exchange(m_times, 0);
    if (times != 0) {
        Write(session::LogLine(session::Repetition{m_round, times, m_from, m_until - m_from}),
              static_cast<int64_t>(m_round) * times);
    }
}

/// After a failure no round goes on: the lines that its count would refer to may be missing.
bool LogWriter::Write(const std::string& line, int64_t calls)
{
    if (!m_file.IsOpen()) {
        return false;
    }
    const std::string gap =
        m_missing != 0 ? session::LogLine(session::Gap{m_missing}, ErrorText(m_error)) : "";
    const uint32_t error = m_file.Append(gap + line);
    if (error == 0) {
        m_missing = 0;
        m_error = 0;
        return true;
    }
    if (m_error == 0) {
        acgreader::Report("the log can't be written: " + m_name + ": " + ErrorText(error));
    }
    m_error = error;
    m_missing += calls;
    m_isCounted = false;
    m_written.clear();
    return false;
}

} // namespace recorder
