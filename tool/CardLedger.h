// Which rows of a table have which card.
#pragma once

#include "tool/CardOrders.h"
#include "tool/Journal.h"

#include <cstdint>
#include <map>
#include <set>
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
        std::string Serial;    ///< of the row's card, which is written, or may be in part; empty: none is
        uint32_t Contents = 0; ///< of that card, as in JournalEntry
        std::string Reason;    ///< of its last failure, until it is done
    };

    /// table: the name of its file. Throws as Journal does.
    CardLedger(const std::string& table, uint64_t digest, std::vector<CardOrder> orders);

    /// The row takes another card, and no row takes its former one. Throws UsageError if the row has no card
    /// that was begun.
    void GiveUp(int32_t row);
    /// changed: the table, since its journal was begun. Throws UsageError if that is refused, if a row has
    /// been moved, or changed while its card is begun, or if a row that isn't done names a card that it can't
    /// get.
    void Accept(Changed changed);

    [[nodiscard]] const std::vector<CardOrder>& Orders() const { return m_orders; }
    [[nodiscard]] State StateOf(const CardOrder& order) const;
    /// Of the orders.
    [[nodiscard]] int CountLeft() const;

    /// Why a card isn't one for this row, by journal or table, as in "is card 12 of 300"; empty: it may be.
    [[nodiscard]] std::string WhyNotFor(int32_t row, const std::string& serial) const;
    /// "card 12 of 300", by its row.
    [[nodiscard]] std::string NameOf(int32_t row) const;

    /// Appends it to the journal. serial: as in State. Throws as Journal::Append does.
    void Note(const CardOrder& order, const std::string& serial, JournalEntry::Step step,
              const std::string& reason = {});

private:
    void Take(const JournalEntry& entry);
    void RequireRows() const;
    void RequireCards() const;

    std::string m_table;
    std::vector<CardOrder> m_orders;
    Journal m_journal;
    std::map<int32_t, State> m_states; ///< by row, also of rows that the table no longer has
    std::set<std::string> m_givenUp;   ///< the cards' serial numbers
};

} // namespace acg::tool
