// The small numbers by which the card operations name keys.
#pragma once

#include <cstdint>

namespace acg
{

// KeyType: the key to log in with. Every value but KeyTypeB is key A.
inline constexpr uint8_t KeyTypeA = 1;
inline constexpr uint8_t KeyTypeB = 2;

// KeysToUse and KeysUsed: the keys that a sector works with. Every other value means both keys.
inline constexpr uint8_t KeysAsOnCard = 0; ///< only on writing
inline constexpr uint8_t KeyAAlone = 1;
inline constexpr uint8_t BothKeys = 2;

} // namespace acg
