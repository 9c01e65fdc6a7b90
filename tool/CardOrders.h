// What the rows of a table say is to be written on which card.
#pragma once

#include "tool/DumpFile.h"
#include "tool/Keys.h"
#include "tool/Table.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace acg::tool
{

/// One card, by a row of the table.
struct CardOrder {
    int32_t Row = 0;          ///< as a spreadsheet counts
    std::string SerialNumber; ///< in capitals; empty: any card
    std::string Note;         ///< for the person who places the cards
    Dump Wanted;              ///< up to the last sector that is written; what isn't known stays as it is
    std::map<int32_t, KeyRing> Keys; ///< by sector, what may open it now
};

struct OrderOptions {
    std::vector<std::string> Columns; ///< --set: "NAME=CELL", a column with the same cell in each row
    std::vector<std::string> Ignored; ///< --ignore-columns
    std::string Encoding = "utf-8";   ///< --encoding, of texts: utf-8, latin-1 or utf-16, the low byte first
    bool IsForGood = false;           ///< --for-good
};

/// One for each row. Throws UsageError, a line for each thing that is wrong in the table, with its row and
/// column; what a cell holds isn't shown.
[[nodiscard]] std::vector<CardOrder> ReadOrders(const Table& table, const OrderOptions& options);

} // namespace acg::tool
