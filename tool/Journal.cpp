#include "tool/Journal.h"

#include "acg/platform/AnsiText.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace acg::tool
{

namespace
{

constexpr std::string_view Version = "acg issue, journal 1, FNV-1a ";
constexpr std::array<std::string_view, 5> StepNames = {"begun", "done", "failed", "skipped", "given up"};

std::string Now()
{
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const year_month_day day(floor<days>(now));
    const hh_mm_ss time(now - floor<days>(now));
    return Format("%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
}

JournalEntry ParseEntry(std::string_view line, const std::string& problem)
{
    const std::vector<std::string_view> parts = Split(line, '\t');
    const auto* const step = std::ranges::find(StepNames, parts.size() == 6 ? parts[3] : "");
    if (step == StepNames.end()) {
        throw UsageError{problem};
    }
    uint32_t contents = 0;
    const char* const end = parts[5].data() + parts[5].size();
    if (std::from_chars(parts[5].data(), end, contents, 16).ptr != end) {
        throw UsageError{problem};
    }
    return {ParseNumber(parts[1], 1, INT32_MAX, problem),
            std::string(parts[2]),
            static_cast<JournalEntry::Step>(step - StepNames.begin()),
            std::string(parts[4]),
            contents,
            std::string(parts[0])};
}

} // namespace

Journal::Journal(const std::string& table, uint64_t digest)
    : m_name(table + ".journal"),
      m_header(std::string(Version) + Format("%08X%08X", static_cast<unsigned>(digest >> 32),
                                             static_cast<unsigned>(digest & 0xFFFFFFFF)))
{
    // Whatever other name the table has: its journal is one.
    std::filesystem::path path = std::filesystem::weakly_canonical(ToPath(table));
    path += ".journal";
    Check(m_file.Open(path));
    const uint32_t error = m_file.Lock();
    if (error == AppendedFile::LockedByAnother) {
        throw UsageError{table + " is in use by another run"};
    }
    Check(error);
    std::error_code unreadable;
    const uintmax_t size = std::filesystem::file_size(path, unreadable);
    const std::optional<std::string> text =
        unreadable ? std::nullopt : ReadFile(path, static_cast<size_t>(size));
    if (!text) {
        throw OtherFailure{"can't read " + m_name};
    }
    Read(*text);
}

void Journal::Read(const std::string& text)
{
    const std::string_view whole =
        std::string_view(text).substr(0, text.rfind('\n') + 1); // none: npos + 1 is 0
    int number = 0;
    for (std::string_view rest = whole; !rest.empty(); rest.remove_prefix(rest.find('\n') + 1)) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        ++number;
        if (line.starts_with(Version) && line.size() == m_header.size()) {
            m_isOfTable = line == m_header;
        } else if (number == 1) {
            throw UsageError{m_name + " isn't a journal of this version of acg"};
        } else {
            m_entries.push_back(ParseEntry(line, Format("%s, line %d, is damaged", m_name.c_str(), number)));
        }
    }
    if (whole.empty() && !std::string_view(text).starts_with(Version.substr(0, text.size()))) {
        throw UsageError{m_name + " isn't a journal of this version of acg"};
    }
    Check(m_file.CutTo(whole.size()));
    if (whole.empty()) {
        AcceptTable();
    }
}

void Journal::AcceptTable()
{
    Write(m_header);
    m_isOfTable = true;
}

void Journal::Append(JournalEntry entry)
{
    entry.Time = Now();
    entry.Serial = Printable(entry.Serial);
    entry.Reason = Printable(MaskKeys(entry.Reason));
    Write(entry.Time + '\t' + std::to_string(entry.Row) + '\t' + entry.Serial + '\t' +
          std::string(StepNames[static_cast<size_t>(entry.What)]) + '\t' + entry.Reason + '\t' +
          Format("%08X", entry.Contents));
    m_entries.push_back(std::move(entry));
}

void Journal::Write(const std::string& line)
{
    Check(m_file.Append(line + '\n'));
    Check(m_file.Sync());
}

void Journal::Check(uint32_t error) const
{
    if (error != 0) {
        throw OtherFailure{"can't write " + m_name + ": " +
                           ToUtf8(FromAnsi(std::system_category().message(static_cast<int>(error))))};
    }
}

} // namespace acg::tool
