// What became of the rows of a table, in a file beside it.
#pragma once

#include "acg/platform/AppendedFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace acg::tool
{

/// What is known of the card of a row.
struct JournalEntry {
    enum class Step {
        CardBegun,
        CardDone,
        CardFailed,
        CardSkipped,
        CardGivenUp ///< the row takes another card from then on
    };

    int32_t Row = 0; ///< as a spreadsheet counts, from 1
    std::string Serial;
    Step What = Step::CardBegun;
    std::string Reason = {}; ///< no key; control characters are shown by digits
    uint32_t Contents = 0;   ///< a digest of what is to be written, too short to find a key by it
    std::string Time = {};   ///< of Append: UTC, as in 2026-11-23T09:30:00Z
};

/// A file, its owner's alone if it is new, that is locked as long as this object lives. A first line names
/// its version and the table's digest; each further line is an entry, its parts separated by tabs, or another
/// digest from there on. A last line without its end was never finished: it is removed.
class Journal
{
public:
    /// Opens the journal of a table, CARDS.csv.journal, and creates it if there is none. Throws UsageError if
    /// another run has it open, or it has a line of another kind; OtherFailure if it can't be read or
    /// written.
    Journal(const std::string& table, uint64_t digest);

    /// In the order in which they were appended, those of former runs first.
    [[nodiscard]] const std::vector<JournalEntry>& Entries() const { return m_entries; }
    /// False if the table has changed since the journal was begun, or since it was accepted.
    [[nodiscard]] bool IsOfTable() const { return m_isOfTable; }
    /// The entries count for the changed table.
    void AcceptTable();
    /// The entry is on the disk on return. Throws OtherFailure if it can't be written.
    void Append(JournalEntry entry);

private:
    void Read(const std::string& text);
    void Write(const std::string& line);
    void Check(uint32_t error) const;

    std::string m_name;
    std::string m_header; ///< the first line for the table as it is now
    AppendedFile m_file;
    std::vector<JournalEntry> m_entries;
    bool m_isOfTable = false;
};

} // namespace acg::tool
