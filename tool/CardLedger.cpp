#include "tool/CardLedger.h"

#include "acg/platform/HexText.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>
#include <utility>

namespace acg::tool
{

namespace
{

uint32_t ContentsOf(const CardOrder& order)
{
    uint64_t digest = DigestOf(order.SerialNumber);
    for (const DumpedBlock& block : order.Wanted) {
        digest = DigestOf(Format("%04X", static_cast<unsigned>(block.Known)) + ToHex(block.Bytes), digest);
    }
    return static_cast<uint32_t>(digest ^ (digest >> 32));
}

} // namespace

CardLedger::CardLedger(const std::string& table, uint64_t digest, std::vector<CardOrder> orders)
    : m_table(table), m_orders(std::move(orders)), m_journal(table, digest)
{
    for (const JournalEntry& entry : m_journal.Entries()) {
        Take(entry);
    }
}

void CardLedger::Take(const JournalEntry& entry)
{
    using enum JournalEntry::Step;
    State& state = m_states[entry.Row];
    if (entry.What == CardGivenUp) {
        m_givenUp.insert(entry.Serial);
        state = {};
        return;
    }
    state = {.IsDone = state.IsDone || entry.What == CardDone,
             .Serial = entry.Serial,
             .Contents = entry.Contents,
             .Reason = entry.What == CardFailed    ? entry.Reason
                       : entry.What == CardSkipped ? state.Reason
                                                   : ""};
}

void CardLedger::GiveUp(int32_t row)
{
    const auto found = m_states.find(row);
    if (found == m_states.end() || found->second.IsDone || found->second.Serial.empty()) {
        throw UsageError{Format("row %d has no card that was begun", row)};
    }
    const JournalEntry entry{
        .Row = row, .Serial = found->second.Serial, .What = JournalEntry::Step::CardGivenUp};
    m_journal.Append(entry);
    Take(entry);
}

void CardLedger::Accept(Changed changed)
{
    if (!m_journal.IsOfTable() && changed == Changed::Refused) {
        throw UsageError{m_table +
                         ", or what is given for all its rows, has changed since its journal was begun. "
                         "Give --resume if the rows that are done still stand"};
    }
    RequireRows();
    RequireCards();
    if (!m_journal.IsOfTable()) {
        m_journal.AcceptTable();
    }
}

/// A row that was inserted, removed or sorted would take the place of another one.
void CardLedger::RequireRows() const
{
    for (const auto& [row, state] : m_states) {
        const auto own = std::ranges::find(m_orders, row, &CardOrder::Row);
        if (state.Serial.empty() || (own != m_orders.end() && ContentsOf(*own) == state.Contents)) {
            continue;
        }
        const std::string what =
            Format("row %d was %s on card %s", row, state.IsDone ? "written" : "begun", state.Serial.c_str());
        const auto now = std::ranges::find(m_orders, state.Contents, ContentsOf);
        if (now != m_orders.end()) {
            throw UsageError{what +
                             Format(", and what it had is in row %d now. The rows keep their order: put "
                                    "new ones at the end, and leave the others",
                                    now->Row)};
        }
        if (!state.IsDone) {
            throw UsageError{what +
                             ", and has changed since. Put it back, and finish that card first; if it is "
                             "lost, give it up by " +
                             Format("--give-up %d", row)};
        }
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

std::string CardLedger::WhyNotFor(int32_t row, const std::string& serial) const
{
    if (m_givenUp.contains(serial)) {
        return "was given up";
    }
    for (const auto& [other, state] : m_states) {
        if (other != row && state.Serial == serial) {
            return "is " + NameOf(other);
        }
    }
    for (const CardOrder& order : m_orders) {
        if (order.Row != row && order.SerialNumber == serial) {
            return "is for " + NameOf(order.Row);
        }
    }
    return {};
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
        if (const std::string reason = WhyNotFor(order.Row, order.SerialNumber); !reason.empty()) {
            throw UsageError{Format("row %d names card %s, which %s", order.Row, order.SerialNumber.c_str(),
                                    reason.c_str())};
        }
    }
}

void CardLedger::Note(const CardOrder& order, const std::string& serial, JournalEntry::Step step,
                      const std::string& reason)
{
    const JournalEntry entry{
        .Row = order.Row, .Serial = serial, .What = step, .Reason = reason, .Contents = ContentsOf(order)};
    m_journal.Append(entry);
    Take(entry);
}

} // namespace acg::tool
