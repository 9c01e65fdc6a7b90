// A block as text: 32 hexadecimal digits, two a byte, high digit first, byte 0 first.
#pragma once

#include <cstddef>
#include <cstdint>

namespace acg
{

inline constexpr int32_t BlockBytes = 16;
inline constexpr size_t DigitsOfByte = 2;
inline constexpr int32_t BlockDigits = BlockBytes * DigitsOfByte;

} // namespace acg
