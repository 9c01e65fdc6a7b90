// All the cards that were ever laid on a reader of this process.
#pragma once

#include "simulator/Card.h"
#include "simulator/DeviceText.h"

#include <map>
#include <string>

namespace simulator
{

/// Replaces the file at once by an image of the card: at any time it is the old or the new one. Throws a
/// Refusal where it can't be written.
void SaveImage(const Card& Saved, const std::string& Path);

/// A card is its serial number: whoever lays the same number again meets the same card with the contents
/// that it has by now, and the other options don't count. A card stays where it is as long as its box lives.
class CardBox
{
public:
    /// Returns the card that the options ask for, null for an empty field. It has been saved where they say
    /// so. Throws a Refusal where the image can't be read, is no whole card of the size asked for, or the
    /// card can't be saved. Where no serial number is asked for the image is read, as it tells.
    [[nodiscard]] Card* Lay(const CardOptions& Options);

private:
    std::map<SerialNumber, Card> m_cards;
};

} // namespace simulator
