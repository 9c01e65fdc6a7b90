// A block as text: 32 hexadecimal digits, two a byte, high digit first, byte 0 first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace acg
{

inline constexpr int32_t BlockBytes = 16;
inline constexpr size_t DigitsOfByte = 2;
inline constexpr int32_t BlockDigits = BlockBytes * DigitsOfByte;

/// Puts a text of at most BlockDigits in place of a host's. That may have held a trailer, with keys: where it
/// has no room for a block, its memory is wiped and given up.
void StoreInHostText(std::wstring& HostText, std::wstring_view Text);

} // namespace acg
