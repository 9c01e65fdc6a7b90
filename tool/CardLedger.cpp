#include "tool/CardLedger.h"

#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>
#include <utility>

namespace acg::tool
{

CardLedger::CardLedger(const std::string& table, uint64_t digest, std::vector<CardOrder> orders,
                       Changed changed)
    : m_orders(std::move(orders)), m_journal(table, digest)
{
    for (const JournalEntry& entry : m_journal.Entries()) {
        State& state = m_states[entry.Row];
        state = {state.IsDone || entry.What == JournalEntry::Step::CardDone, entry.Serial};
    }
    if (!m_journal.IsOfTable() && changed == Changed::Refused) {
        throw UsageError{table + " has changed since its journal was begun. Give --resume if the rows that "
                                 "are done still stand"};
    }
    RequireCards();
    if (!m_journal.IsOfTable()) {
        m_journal.AcceptTable();
    }
}

CardLedger::State CardLedger::StateOf(const CardOrder& order) const
{
    const auto found = m_states.find(order.Row);
    return found != m_states.end() ? found->second : State{};
}

int CardLedger::CountLeft() const
{
    return static_cast<int>(
        std::ranges::count_if(m_orders, [&](const CardOrder& order) { return !StateOf(order).IsDone; }));
}

int32_t CardLedger::OtherOwner(const std::string& serial, int32_t row) const
{
    for (const auto& [other, state] : m_states) {
        if (other != row && state.Serial == serial) {
            return other;
        }
    }
    for (const CardOrder& order : m_orders) {
        if (order.Row != row && order.SerialNumber == serial) {
            return order.Row;
        }
    }
    return 0;
}

std::string CardLedger::NameOf(int32_t row) const
{
    const auto found = std::ranges::find(m_orders, row, &CardOrder::Row);
    return found == m_orders.end() ? Format("the card of row %d", row)
                                   : Format("card %d of %d", static_cast<int>(found - m_orders.begin()) + 1,
                                            static_cast<int>(m_orders.size()));
}

void CardLedger::RequireCards() const
{
    for (const CardOrder& order : m_orders) {
        const State state = StateOf(order);
        if (state.IsDone || order.SerialNumber.empty()) {
            continue;
        }
        if (!state.Serial.empty() && state.Serial != order.SerialNumber) {
            throw UsageError{Format("row %d was begun with card %s, and now names %s", order.Row,
                                    state.Serial.c_str(), order.SerialNumber.c_str())};
        }
        if (const int32_t owner = OtherOwner(order.SerialNumber, order.Row)) {
            throw UsageError{Format("row %d names card %s, which has been written for row %d", order.Row,
                                    order.SerialNumber.c_str(), owner)};
        }
    }
}

void CardLedger::Note(const CardOrder& order, const std::string& serial, JournalEntry::Step step,
                      const std::string& reason)
{
    m_journal.Append({.Row = order.Row, .Serial = serial, .What = step, .Reason = reason});
    m_states[order.Row] = {step == JournalEntry::Step::CardDone, serial};
}

} // namespace acg::tool
