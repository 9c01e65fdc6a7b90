// The layout of a sector's trailer, its last block:
//
//     bytes  0 to 5   6 to 8            9           10 to 15
//            key A    condition bytes   user byte   key B
//
// BX is what the interface calls the user byte.
#pragma once

#include <cstddef>

namespace acg
{

inline constexpr size_t KeySize = 6;
inline constexpr size_t AccessBitsAt = KeySize;
inline constexpr size_t UserByteAt = 9; ///< BX
inline constexpr size_t KeyBAt = 10;

} // namespace acg
