// All the cards that were ever laid on a reader of this process.
#pragma once

#include "simulator/Card.h"
#include "simulator/DeviceText.h"

#include <map>

namespace simulator
{

/// A card is its serial number: whoever lays the same number again meets the same card with the contents
/// that it has by now, and the other options don't count. A card stays where it is as long as its box lives.
class CardBox
{
public:
    /// Gives the card that the options ask for, null for an empty field. Throws a Refusal where the image
    /// can't be read or is no whole card of the size asked for. Where no serial number is asked for the
    /// image is read, as it tells.
    [[nodiscard]] Card* Lay(const CardOptions& Options);

private:
    std::map<SerialNumber, Card> m_cards;
};

} // namespace simulator
