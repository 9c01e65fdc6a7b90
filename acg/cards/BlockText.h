// A block as text: 32 hexadecimal digits, two a byte, high digit first, byte 0 first. It may be a sector
// trailer, with keys.
#pragma once

#include "acg/platform/Secret.h"

#include <cstddef>
#include <cstdint>

namespace acg
{

inline constexpr int32_t BlockBytes = 16;
inline constexpr size_t DigitsOfByte = 2;
inline constexpr size_t BlockDigits = BlockBytes * DigitsOfByte;

/// The component's own text of a block. Operations change it in place; there is room for a block.
struct BlockText : Secret<wchar_t> {
    BlockText() { Text.reserve(BlockDigits); }
};

} // namespace acg
