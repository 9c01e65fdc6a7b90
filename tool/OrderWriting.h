// Writing a card as a row of a table orders it.
#pragma once

#include "tool/CardOrders.h"
#include "tool/CardSession.h"
#include "tool/WriteReport.h"

namespace acg::tool
{

/// To the person who lays the cards: what completes a card that may be written in part.
constexpr const char* NextOfOrder = "repeat the same command, and place this card on the reader";

/// Which keys a card has.
enum class CardState {
    New,   ///< those that it came with
    Begun, ///< those, and perhaps new ones already
    Written
};

/// Writes what differs, reads all of it back with the new keys, and selects the card once more. Nothing is
/// written if a part of the order can't be. given: the keys of sectors for which the order has none. report:
/// has one part, for all of it, which is replaced by those that are written. Throws as CardSession and
/// WriteReport do, and OtherFailure if a part can't be written or reads back as something else.
void WriteOrder(CardSession& card, const CardOrder& order, CardState state, const KeyRing& given,
                WriteReport& report);

} // namespace acg::tool
