#include "tool/CardOrders.h"

#include "acg/cards/BlockAddress.h"
#include "acg/cards/TrailerLayout.h"
#include "acg/platform/HexText.h"
#include "acg/platform/TextCase.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <string_view>

namespace acg::tool
{

namespace
{

/// What a column holds.
enum class Kind {
    Serial,
    Note,
    Contents, ///< of a block, in hexadecimal
    Text,
    Value,
    Key,
    NewKeyA,
    NewKeyB,
    Levels,
    UserByte,
    Ignored
};

struct Column {
    Kind Holds;
    int32_t Number = 0;       ///< of the block or the sector
    std::string Name;         ///< as it stands in the table
    std::string Cell;         ///< of --set
    std::optional<size_t> At; ///< in a row; none: of --set
};

/// A column whose name ends in the number of a block or a sector.
struct NumberedColumn {
    std::string_view Name;
    Kind Holds;
    int32_t (*Parse)(std::string_view);
};

constexpr NumberedColumn NumberedColumns[] = {
    {"block", Kind::Contents, ParseDataBlock}, {"text", Kind::Text, ParseDataBlock},
    {"value", Kind::Value, ParseDataBlock},    {"key a", Kind::NewKeyA, ParseSector},
    {"key b", Kind::NewKeyB, ParseSector},     {"key", Kind::Key, ParseSector},
    {"levels", Kind::Levels, ParseSector},     {"bx", Kind::UserByte, ParseSector},
};

std::string_view Trimmed(std::string_view text)
{
    const size_t from = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    return text.substr(from, text.find_last_not_of(" \t\r\n") + 1 - from);
}

std::string Lower(std::string_view text)
{
    std::string lower(Trimmed(text));
    std::ranges::transform(lower, lower.begin(), [](char character) { return AsciiToLower(character); });
    return lower;
}

/// Throws UsageError for a name that isn't one.
Column ParseColumn(std::string_view name, const std::vector<std::string>& ignored)
{
    const std::string lower = Lower(name);
    Column column{.Holds = Kind::Ignored, .Name = std::string(Trimmed(name))};
    if (std::ranges::any_of(ignored, [&](const std::string& other) { return Lower(other) == lower; })) {
        return column;
    }
    if (lower == "serial" || lower.starts_with("note")) {
        column.Holds = lower == "serial" ? Kind::Serial : Kind::Note;
        return column;
    }
    const size_t blank = std::min(lower.rfind(' '), lower.size());
    const auto* const known = std::ranges::find(
        NumberedColumns, Trimmed(std::string_view(lower).substr(0, blank)), &NumberedColumn::Name);
    if (blank == lower.size() || known == std::end(NumberedColumns)) {
        throw UsageError{"unknown column; the columns are serial, note, block N, text N, value N, key N, "
                         "key A N, key B N, levels N and bx N, and --ignore-columns leaves one out"};
    }
    column.Holds = known->Holds;
    column.Number = known->Parse(std::string_view(lower).substr(blank + 1));
    return column;
}

/// Throws UsageError unless it is a serial number as a reader writes it.
std::string UpperHex(std::string_view text)
{
    constexpr size_t ShortestDigits = 8;
    const std::optional<std::vector<uint8_t>> bytes = FromHex(text);
    if (!bytes || text.size() < ShortestDigits) {
        throw UsageError{"the cell isn't a serial number in hexadecimal digits, as acg info shows it"};
    }
    return ToHex(*bytes);
}

/// The text in the encoding, zeros after it. Throws UsageError if it doesn't fit.
Block EncodeText(std::string_view text, const std::string& encoding)
{
    std::string bytes;
    if (encoding == "utf-8") {
        bytes = text;
    } else {
        for (const wchar_t character : ToWide(text)) {
            const auto code = static_cast<char32_t>(character);
            if (code > (encoding == "latin-1" ? 0xFFU : 0xFFFFU)) {
                throw UsageError{"the text has a character that " + encoding + " lacks"};
            }
            bytes += static_cast<char>(code & 0xFFU);
            if (encoding == "utf-16") {
                bytes += static_cast<char>(code >> 8);
            }
        }
    }
    Block block{};
    if (bytes.size() > block.size()) {
        throw UsageError{Format("the text has %d bytes in %s; a block has 16", static_cast<int>(bytes.size()),
                                encoding.c_str())};
    }
    std::ranges::copy(bytes, block.begin());
    return block;
}

/// A value block, with the block's own number as its address.
Block ValueBlockOf(int32_t value, int32_t number)
{
    Block block{};
    for (size_t byte = 0; byte < sizeof value; ++byte) {
        const auto part = static_cast<uint8_t>(static_cast<uint32_t>(value) >> (8 * byte));
        block[byte] = block[byte + 8] = part;
        block[byte + 4] = static_cast<uint8_t>(~part);
        block[byte + 12] = static_cast<uint8_t>(byte % 2 == 0 ? number : ~number);
    }
    return block;
}

/// What a row says of a sector's new trailer.
struct NewTrailer {
    std::optional<Key> KeyA;
    std::optional<Key> KeyB;
    std::optional<std::array<int32_t, SectorSlots>> Levels;
    std::optional<uint8_t> UserByte;
    std::array<bool, DataSlots> IsValueBlock{};
    std::array<bool, DataSlots> IsWritten{}; ///< the row writes a data block there
    bool IsRefused = false;                  ///< one of its cells is
};

/// Throws UsageError for one that can't be written.
DumpedBlock Encode(const NewTrailer& trailer, bool isForGood)
{
    if (!trailer.KeyA || !trailer.KeyB || !trailer.Levels) {
        throw UsageError{"key A, key B and the levels of a sector are given together, or none of them"};
    }
    if (trailer.KeyA->IsZeros() || trailer.KeyB->IsZeros()) {
        throw UsageError{"a new key can't be zeros"};
    }
    constexpr int32_t RightsOfKeyA = scss_A_WriteKeys | scss_A_WriteConditions;
    const bool isKeyAAlone = (trailer.Levels->back() & RightsOfKeyA) != 0;
    const ConditionBytes bytes = EncodeOrRefuse({.Levels = *trailer.Levels,
                                                 .KeysToUse = isKeyAAlone ? KeyAAlone : BothKeys,
                                                 .IsValueBlock = trailer.IsValueBlock});
    if (AreConditionsFixed(TrailerRightsIn(bytes)) && !isForGood) {
        throw UsageError{"these levels freeze the sector for good; --for-good allows it"};
    }
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        if (trailer.IsWritten[slot] && RightsOfBits(bytes)[slot][Right::Read] == KeySet::None) {
            throw UsageError{"with these levels, no key could read back what the row writes"};
        }
    }
    DumpedBlock block{.Known = WholeBlock};
    std::ranges::copy(*trailer.KeyA, block.Bytes.begin());
    std::ranges::copy(bytes, block.Bytes.begin() + AccessBitsAt);
    std::ranges::copy(*trailer.KeyB, block.Bytes.begin() + KeyBAt);
    if (trailer.UserByte) {
        block.Bytes[UserByteAt] = *trailer.UserByte;
    } else {
        block.Known = static_cast<uint16_t>(block.Known & ~BitsOf(UserByteAt, 1));
    }
    return block;
}

/// A row's order, made cell by cell. What is thrown lacks row and column.
class OrderInProgress
{
public:
    OrderInProgress(int32_t row, const std::string& encoding) : m_encoding(encoding) { m_order.Row = row; }

    /// Throws UsageError for a cell that can't be used.
    void Add(const Column& column, std::string_view cell);
    /// After a failed Add.
    void Refuse(const Column& column);

    using Refusals = std::function<void(const std::string& place, const UsageError& problem)>;
    [[nodiscard]] CardOrder Finish(bool isForGood, const Refusals& refuse);

private:
    DumpedBlock& BlockAt(int32_t number);
    void Store(int32_t number, const Block& contents);

    const std::string& m_encoding;
    CardOrder m_order;
    std::map<int32_t, NewTrailer> m_trailers; ///< by sector
    std::vector<int32_t> m_values;            ///< the blocks that are value blocks
};

DumpedBlock& OrderInProgress::BlockAt(int32_t number)
{
    Dump& wanted = m_order.Wanted;
    const auto size = static_cast<size_t>(TrailerBlock(SectorOf(number))) + 1;
    wanted.resize(std::max(wanted.size(), size));
    return wanted[static_cast<size_t>(number)];
}

void OrderInProgress::Store(int32_t number, const Block& contents)
{
    DumpedBlock& block = BlockAt(number);
    if (block.Known != 0) {
        throw UsageError{Format("block %d is given twice", number)};
    }
    block = {contents, WholeBlock};
}

void OrderInProgress::Add(const Column& column, std::string_view cell)
{
    const std::string_view trimmed = Trimmed(cell);
    switch (column.Holds) {
    case Kind::Serial:
        m_order.SerialNumber = UpperHex(trimmed);
        break;
    case Kind::Note:
        m_order.Note += (m_order.Note.empty() ? "" : ", ") + Printable(trimmed);
        break;
    case Kind::Contents:
        if (const std::optional<Block> block = ParseBlock(trimmed)) {
            Store(column.Number, *block);
            break;
        }
        throw UsageError{"the cell isn't 32 hexadecimal digits"};
    case Kind::Text:
        Store(column.Number, EncodeText(cell, m_encoding));
        break;
    case Kind::Value:
        Store(column.Number, ValueBlockOf(ParseNumber(trimmed, INT32_MIN, INT32_MAX,
                                                      "the cell isn't a whole number of 32 bits"),
                                          column.Number));
        m_values.push_back(column.Number);
        break;
    case Kind::Key: {
        const std::string type = Lower(trimmed.substr(0, 2));
        const size_t from = type == "a:" || type == "b:" ? type.size() : 0;
        m_order.Keys[column.Number].push_back(
            {ParseKey(trimmed.substr(from), "the cell"), "the table's key"});
        break;
    }
    case Kind::NewKeyA:
        m_trailers[column.Number].KeyA = ParseKey(trimmed, "the cell");
        break;
    case Kind::NewKeyB:
        m_trailers[column.Number].KeyB = ParseKey(trimmed, "the cell");
        break;
    case Kind::Levels:
        m_trailers[column.Number].Levels = ParseLevelList(trimmed, "the cell");
        break;
    case Kind::UserByte:
        m_trailers[column.Number].UserByte =
            static_cast<uint8_t>(ParseNumber(trimmed, 0, UINT8_MAX, "the cell isn't a number from 0 to 255"));
        break;
    case Kind::Ignored:
        break;
    }
}

void OrderInProgress::Refuse(const Column& column)
{
    if (column.Holds == Kind::NewKeyA || column.Holds == Kind::NewKeyB || column.Holds == Kind::Levels ||
        column.Holds == Kind::UserByte) {
        m_trailers[column.Number].IsRefused = true;
    }
}

CardOrder OrderInProgress::Finish(bool isForGood, const Refusals& refuse)
{
    for (auto& [sector, trailer] : m_trailers) {
        if (trailer.IsRefused) {
            continue;
        }
        for (int32_t number = TrailerBlock(sector - 1) + 1; number < TrailerBlock(sector); ++number) {
            trailer.IsWritten[SlotOf(number)] |= BlockAt(number).Known != 0;
            trailer.IsValueBlock[SlotOf(number)] |= std::ranges::find(m_values, number) != m_values.end();
        }
        try {
            BlockAt(TrailerBlock(sector)) = Encode(trailer, isForGood);
        } catch (const UsageError& problem) {
            refuse(Format("sector %d", sector), problem);
        }
    }
    return std::move(m_order);
}

std::vector<Column> ParseColumns(const Table& table, const OrderOptions& options,
                                 std::vector<std::string>& problems)
{
    std::vector<Column> columns;
    const auto add = [&](std::string_view name, const std::string& place, std::optional<size_t> at,
                         std::string_view cell) {
        try {
            Column column = ParseColumn(name, options.Ignored);
            const bool mayRepeat = column.Holds == Kind::Note || column.Holds == Kind::Ignored;
            if (!mayRepeat && std::ranges::any_of(columns, [&](const Column& other) {
                    return other.Holds == column.Holds && other.Number == column.Number;
                })) {
                throw UsageError{"a second column of that name"};
            }
            if (!at && (column.Holds == Kind::Key || column.Holds == Kind::NewKeyA ||
                        column.Holds == Kind::NewKeyB)) {
                throw UsageError{"other programs could see a key in the command; it belongs into the table"};
            }
            column.At = at;
            column.Cell = cell;
            columns.push_back(std::move(column));
        } catch (const UsageError& problem) {
            problems.push_back(place + ": " + problem.Text);
        }
    };
    for (size_t at = 0; at < table.Names().size(); ++at) {
        const std::string name(Trimmed(table.Names()[at]));
        add(name, "row 1, column \"" + Printable(MaskKeys(name)) + "\"", at, {});
    }
    for (const std::string& text : options.Columns) {
        const size_t sign = std::min(text.find('='), text.size() - 1);
        add(text.substr(0, sign), "--set", {}, text.substr(sign + 1));
    }
    for (const std::string& name : options.Ignored) {
        const auto isNamed = [&](const std::string_view other) { return Lower(other) == Lower(name); };
        if (std::ranges::none_of(table.Names(), isNamed)) {
            problems.push_back("--ignore-columns: there is no column \"" + Printable(MaskKeys(name)) + '"');
        }
    }
    return columns;
}

} // namespace

std::vector<CardOrder> ReadOrders(const Table& table, const OrderOptions& options)
{
    if (options.Encoding != "utf-8" && options.Encoding != "latin-1" && options.Encoding != "utf-16") {
        throw UsageError{"--encoding is utf-8, latin-1 or utf-16"};
    }
    std::vector<std::string> problems;
    const std::vector<Column> columns = ParseColumns(table, options, problems);
    const bool areColumnsKnown = problems.empty();
    std::vector<CardOrder> orders;
    std::map<std::string, int32_t> rowOfSerial;
    for (const Table::Row& row : table.Rows()) {
        const size_t problemsBefore = problems.size();
        OrderInProgress order(row.Number, options.Encoding);
        const auto refuse = [&](const std::string& place, const UsageError& problem) {
            problems.push_back(Format("row %d, %s: %s", row.Number, place.c_str(), problem.Text.c_str()));
        };
        for (const Column& column : columns) {
            const std::string_view cell = column.At ? row.Cells[*column.At] : std::string_view(column.Cell);
            if (Trimmed(cell).empty()) {
                continue;
            }
            try {
                order.Add(column, cell);
            } catch (const UsageError& problem) {
                order.Refuse(column);
                refuse("column \"" + column.Name + '"', problem);
            }
        }
        orders.push_back(order.Finish(options.IsForGood, refuse));
        const std::string& serial = orders.back().SerialNumber;
        const auto [first, isNew] = rowOfSerial.emplace(serial, row.Number);
        if (!serial.empty() && !isNew) {
            refuse("column \"serial\"", {Format("row %d has the same serial number", first->second)});
        }
        if (areColumnsKnown && orders.back().Wanted.empty() && problems.size() == problemsBefore) {
            refuse("the whole row", {"there is nothing to write"});
        }
    }
    if (orders.empty()) {
        problems.emplace_back("the table has no row with a card");
    }
    if (!problems.empty()) {
        std::string text = "the table can't be used:";
        for (const std::string& problem : problems) {
            text += "\n  " + Wrap(problem, /*indent=*/4);
        }
        throw UsageError{text};
    }
    return orders;
}

} // namespace acg::tool
