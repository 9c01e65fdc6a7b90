// How many sectors the card in the field has. The reader doesn't say.
#pragma once

#include "tool/Card.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace acg::tool
{

inline constexpr int32_t LastSector1K = 15;

struct CardSize {
    const char* Name;   ///< "1k" or "4k"
    int32_t LastSector; ///< LastSector1K or LastSector
    std::string Reason; ///< why it is taken for that: "a key opens sector 16"
};

/// What --card says; nothing for empty text. Throws UsageError for anything but "1k" and "4k".
[[nodiscard]] std::optional<CardSize> ParseCardSize(std::string_view text);

/// A card has 4K if one of the keys opens a sector that a card of 1K lacks, and otherwise counts as one of
/// 1K. Throws CardFailure if a reply concerns more than the sector: if the card has left, for example.
[[nodiscard]] CardSize FindCardSize(Encoder& encoder, const std::vector<Key>& keys);

} // namespace acg::tool
