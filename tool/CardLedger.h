// Which rows of a table have which card.
#pragma once

#include "tool/CardOrders.h"
#include "tool/Journal.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace acg::tool
{

/// Orders, and their journal. No card is that of two rows.
class CardLedger
{
public:
    enum class Changed {
        Refused,
        Accepted
    };

    struct State {
        bool IsDone = false;
        std::string Serial; ///< of the row's card, which is written, or may be in part; empty: none is
    };

    /// table: the name of its file. changed: the table, since its journal was begun. Throws as Journal does,
    /// and UsageError if the table is refused, or if a row that isn't done names a card that it can't get.
    CardLedger(const std::string& table, uint64_t digest, std::vector<CardOrder> orders, Changed changed);

    [[nodiscard]] const std::vector<CardOrder>& Orders() const { return m_orders; }
    [[nodiscard]] State StateOf(const CardOrder& order) const;
    /// Of the orders.
    [[nodiscard]] int CountLeft() const;

    /// The row other than this one that a card belongs to, by journal or table; 0: none.
    [[nodiscard]] int32_t OtherOwner(const std::string& serial, int32_t row) const;
    /// "card 12 of 300", by its row.
    [[nodiscard]] std::string NameOf(int32_t row) const;

    /// Appends it to the journal. serial: as in State. Throws as Journal::Append does.
    void Note(const CardOrder& order, const std::string& serial, JournalEntry::Step step,
              const std::string& reason = {});

private:
    void RequireCards() const;

    std::vector<CardOrder> m_orders;
    Journal m_journal;
    std::map<int32_t, State> m_states; ///< by row, also of rows that the table no longer has
};

} // namespace acg::tool
