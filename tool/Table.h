// A table of cells, read from a CSV file as spreadsheets write it.
#pragma once

#include "acg/platform/Secret.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace acg::tool
{

/// FNV-1a of 64 bits (http://www.isthe.com/chongo/tech/comp/fnv), continued from the digest of what comes
/// before.
[[nodiscard]] uint64_t DigestOf(std::string_view bytes, uint64_t digest = 0xCBF29CE484222325);

/// RFC 4180, in UTF-8. Cells are separated by commas, semicolons or tabs, whichever the first row has most
/// of. A cell may hold a key: all of them are views of one text, which is wiped with the table.
class Table
{
public:
    struct Row {
        int32_t Number; ///< as a spreadsheet counts: that of the names is 1
        std::vector<std::string_view> Cells;
    };

    /// Throws UsageError, with row and column and without what a cell holds: for a file that can't be read or
    /// isn't UTF-8, an empty first row, a quote that has no other or stands where none may, or a cell in a
    /// column without a name.
    explicit Table(const std::string& name);

    /// The first row, without the empty names at its end.
    [[nodiscard]] const std::vector<std::string_view>& Names() const { return m_names; }
    /// Those that aren't empty, each with as many cells as there are names.
    [[nodiscard]] const std::vector<Row>& Rows() const { return m_rows; }
    /// DigestOf the file's bytes: it shows that the file has been changed, but not that somebody meant
    /// to hide it.
    [[nodiscard]] uint64_t Digest() const { return m_digest; }

private:
    Secret<char> m_text; ///< its quotes are removed in place
    uint64_t m_digest;
    std::vector<std::string_view> m_names;
    std::vector<Row> m_rows;
};

} // namespace acg::tool
