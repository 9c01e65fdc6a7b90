// A block as text: 32 hexadecimal digits, two a byte, high digit first, byte 0 first. It may be a sector
// trailer, with keys.
#pragma once

#include "platform/Secret.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace acg
{

inline constexpr int32_t BlockBytes = 16;
inline constexpr size_t DigitsOfByte = 2;
inline constexpr size_t BlockDigits = BlockBytes * DigitsOfByte;

/// The component's own text of a block. Operations change Digits in place; there is room for a block.
struct BlockText {
    std::wstring Digits;

    BlockText() { Digits.reserve(BlockDigits); }
    ~BlockText() { Wipe(Digits); }
    BlockText(const BlockText&) = delete;
    BlockText& operator=(const BlockText&) = delete;
};

/// Makes a host's text of a reply of the reader: filled with "0" at its end to a block, or cut.
void StoreReply(std::wstring& HostText, std::string_view Reply);

} // namespace acg
