// Blocks as a person gives and sees them.
#pragma once

#include "tool/Card.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace acg::tool
{

/// A block's bytes, two hexadecimal digits each. Bit n of known stands for byte n; a byte whose bit isn't set
/// is "--".
[[nodiscard]] std::string Digits(const Block& bytes, uint16_t known, std::string_view between);
[[nodiscard]] std::string Characters(const Block& bytes, uint16_t known);
/// One line, with the number and without its end.
[[nodiscard]] std::string HexDump(int32_t number, const Block& bytes, uint16_t known);

/// A mask of count bytes from byte first on, one bit each.
[[nodiscard]] constexpr uint16_t BitsOf(size_t first, size_t count)
{
    return static_cast<uint16_t>(((1U << count) - 1) << first);
}
inline constexpr uint16_t WholeBlock = 0xFFFF;
// Of a sector trailer.
inline constexpr uint16_t KeyABits = BitsOf(0, KeySize);
inline constexpr uint16_t KeyBBits = BitsOf(KeyBAt, KeySize);
inline constexpr uint16_t AccessBytes = BitsOf(AccessBitsAt, std::tuple_size_v<ConditionBytes>);
inline constexpr uint16_t AllButKeys = WholeBlock & ~(KeyABits | KeyBBits);

[[nodiscard]] bool IsTrailer(int32_t number);
/// Whose access bits hold for the block: 0 to 2, or 3 for the trailer.
[[nodiscard]] unsigned SlotOf(int32_t number);

/// Throws UsageError for a number that no card has.
[[nodiscard]] int32_t ParseBlockNumber(std::string_view text);
/// The data block that a write is meant for; throws UsageError for a trailer and for block 0, too.
[[nodiscard]] int32_t ParseDataBlock(std::string_view text);

/// What a value block holds three times, and its address. The numbers are stored with the lowest byte first.
struct ValueBlock {
    explicit ValueBlock(const Block& bytes = {});

    int32_t Value;
    int32_t Inverted; ///< the second copy, inverted again
    int32_t Again;
    /// The block's number, when a reader has written it; none if its four bytes disagree.
    std::optional<uint8_t> Address;

    [[nodiscard]] bool HasCopies() const { return Inverted == Value && Again == Value; }
    [[nodiscard]] bool IsValid() const { return HasCopies() && Address; }
};

/// The command that shows a block, for a person to type. The key itself isn't shown.
[[nodiscard]] std::string ReadCommand(int32_t number, const LoginKey& key);

} // namespace acg::tool
