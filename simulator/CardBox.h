// All the cards that were ever placed in a reader's field in this process.
#pragma once

#include "simulator/Card.h"
#include "simulator/DeviceText.h"

#include <map>
#include <string>

namespace simulator
{

/// The same card, read from its image in the folder, if it exists, and saved to it. Unchanged if there is no
/// folder, or no card.
[[nodiscard]] CardOptions InFolder(CardOptions card, const std::string& folder);

/// Replaces the file that the options name by an image of the card in one step, as FileReplacement does.
/// Throws a Refusal if it can't be written.
void SaveImage(const Card& saved, const CardOptions& options);

/// A card is identified by its serial number: placing the same number again returns the same card with its
/// current contents, and the other options don't count. A card keeps its address as long as its box lives.
class CardBox
{
public:
    /// Returns the card of these options, null for an empty field, saved if they say so. Throws a Refusal
    /// if the image can't be read or isn't a whole card of the requested size, or the card can't be saved.
    /// Without a serial number in the options the image is read, as it contains one.
    [[nodiscard]] Card* Place(const CardOptions& options);

private:
    std::map<SerialNumber, Card> m_cards;
};

} // namespace simulator
