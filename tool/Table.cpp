#include "tool/Table.h"

#include "acg/platform/AnsiText.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace acg::tool
{

namespace
{

constexpr size_t MaxSize = 1 << 24;
constexpr char Quote = '"';

char SeparatorOf(std::string_view text)
{
    constexpr std::array Separators = {',', ';', '\t'};
    std::array<int, Separators.size()> counts = {};
    bool isQuoted = false;
    for (const char character : text) {
        isQuoted = isQuoted != (character == Quote);
        if (character == '\n' && !isQuoted) {
            break;
        }
        for (size_t at = 0; at < Separators.size(); ++at) {
            counts[at] += character == Separators[at] && !isQuoted ? 1 : 0;
        }
    }
    return Separators[static_cast<size_t>(std::ranges::max_element(counts) - counts.begin())];
}

/// Takes row after row from a text.
class RowReader
{
public:
    RowReader(const std::string& name, std::string& text, size_t begin)
        : m_name(name), m_text(text), m_at(begin),
          m_separator(SeparatorOf(std::string_view(text).substr(begin)))
    {
    }

    [[nodiscard]] bool AtEnd() const { return m_at == m_text.size(); }
    /// Of the last row.
    [[nodiscard]] int32_t Number() const { return m_number; }

    std::vector<std::string_view> Next()
    {
        std::vector<std::string_view> cells;
        ++m_number;
        do {
            cells.push_back(NextCell(cells.size() + 1));
        } while (Skip(m_separator));
        Skip('\r');
        Skip('\n');
        return cells;
    }

    [[noreturn]] void Refuse(size_t column, const char* problem) const
    {
        throw UsageError{
            Format("%s, row %d, column %d: %s", m_name.c_str(), m_number, static_cast<int>(column), problem)};
    }

private:
    bool Skip(char character)
    {
        const bool isThere = !AtEnd() && m_text[m_at] == character;
        m_at += isThere ? 1 : 0;
        return isThere;
    }

    [[nodiscard]] bool AtEndOfCell() const
    {
        const std::string_view rest = std::string_view(m_text).substr(m_at);
        return rest.empty() || rest[0] == m_separator || rest[0] == '\n' || rest == "\r" ||
               rest.starts_with("\r\n");
    }

    std::string_view NextCell(size_t column)
    {
        const bool isQuoted = Skip(Quote);
        const size_t begin = m_at;
        size_t end = begin;
        while (isQuoted || !AtEndOfCell()) {
            if (AtEnd()) {
                Refuse(column, "the quote isn't closed");
            }
            const bool isQuote = Skip(Quote);
            if (isQuote && !isQuoted) {
                Refuse(column, "a quote in a cell that doesn't begin with one");
            }
            if (isQuote && !Skip(Quote)) {
                break;
            }
            m_text[end++] = isQuote ? Quote : m_text[m_at++];
        }
        if (!AtEndOfCell()) {
            Refuse(column, "text after the closing quote");
        }
        const std::string_view cell = std::string_view(m_text).substr(begin, end - begin);
        if (!IsAscii(cell) && !IsUtf8(cell)) { // a key is ASCII, and isn't copied
            Refuse(column, "it isn't UTF-8; save the table as UTF-8");
        }
        return cell;
    }

    const std::string& m_name;
    std::string& m_text;
    size_t m_at;
    char m_separator;
    int32_t m_number = 0;
};

/// The number of cells up to the last one that isn't empty.
size_t CountOf(const std::vector<std::string_view>& cells)
{
    const auto last = std::ranges::find_if_not(cells.rbegin(), cells.rend(), &std::string_view::empty);
    return static_cast<size_t>(cells.rend() - last);
}

} // namespace

uint64_t DigestOf(std::string_view bytes, uint64_t digest)
{
    for (const char byte : bytes) {
        digest = (digest ^ static_cast<uint8_t>(byte)) * 0x100000001B3;
    }
    return digest;
}

Table::Table(const std::string& name)
    : m_text(ReadTextFile(name, "table", MaxSize)), m_digest(DigestOf(m_text.Text))
{
    RowReader reader(name, m_text.Text, m_text.Text.starts_with(Utf8Mark) ? Utf8Mark.size() : 0);
    m_names = reader.Next();
    m_names.resize(CountOf(m_names));
    if (m_names.empty()) {
        throw UsageError{name + " has no names of columns in its first row"};
    }
    while (!reader.AtEnd()) {
        std::vector<std::string_view> cells = reader.Next();
        const size_t count = CountOf(cells);
        if (count > m_names.size()) {
            reader.Refuse(count, "the first row has no name for this column");
        }
        cells.resize(m_names.size());
        if (count != 0) {
            m_rows.push_back({reader.Number(), std::move(cells)});
        }
    }
}

} // namespace acg::tool
