#include "acg/cards/AccessBits.h"

#include "acg/cards/BlockText.h"
#include "acg/cards/TrailerLayout.h"
#include "acg/platform/HexText.h"

#include <optional>

namespace acg
{

namespace
{

using enum AccessTriple;

// In the comments: r reads, w writes, - neither.

/// Bits 0 and 1 of the level, key A's rights, for a sector that works with key A alone.
constexpr AccessTriple BlockOfKeyA[] = {
    Bits111, // 0  -
    Bits001, // 1  r
    Bits000, // 2  w
    Bits000, // 3  rw
};

constexpr std::optional<AccessTriple> BlockOfBothKeys[HighestLevel + 1] = {
    //                    key A  key B
    Bits111,      //  0   -      -
    std::nullopt, //  1   r      -
    std::nullopt, //  2   w      -
    std::nullopt, //  3   rw     -
    Bits101,      //  4   -      r
    Bits001,      //  5   r      r
    std::nullopt, //  6   w      r
    std::nullopt, //  7   rw     r
    Bits011,      //  8   -      w
    Bits100,      //  9   r      w
    Bits000,      // 10   w      w
    Bits000,      // 11   rw     w
    Bits011,      // 12   -      rw
    Bits100,      // 13   r      rw
    Bits000,      // 14   w      rw
    Bits000,      // 15   rw     rw
};

/// In place of 100, if the block was written as a value block since the opening.
constexpr AccessTriple OfValueBlock = Bits110;

/// Bits 0 and 1 of the level, what key A may write, for a sector that works with key A alone.
constexpr AccessTriple TrailerOfKeyA[] = {
    Bits010, // 0  nothing
    Bits000, // 1  keys
    Bits001, // 2  conditions
    Bits001, // 3  keys and conditions
};

/// Bits 2 and 3 of the level, what key B may write. A level with rights of key A is refused.
constexpr AccessTriple TrailerOfBoth[] = {
    Bits111, //  0  nothing
    Bits100, //  4  keys
    Bits101, //  8  conditions
    Bits011, // 12  keys and conditions
};

/// What the card grants, in the order of AccessTriple.
constexpr BlockRights OnBlock[] = {
    // read          write
    {KeySet::AOrB, KeySet::AOrB}, // 000
    {KeySet::AOrB, KeySet::None}, // 001
    {KeySet::AOrB, KeySet::None}, // 010
    {KeySet::B, KeySet::B},       // 011
    {KeySet::AOrB, KeySet::B},    // 100
    {KeySet::B, KeySet::None},    // 101
    {KeySet::AOrB, KeySet::B},    // 110
    {KeySet::None, KeySet::None}, // 111
};

constexpr TrailerRights OnTrailer[] = {
    // write keys, conditions; read conditions, key B
    {KeySet::A, KeySet::None, KeySet::A, KeySet::A},          // 000
    {KeySet::A, KeySet::A, KeySet::A, KeySet::A},             // 001
    {KeySet::None, KeySet::None, KeySet::A, KeySet::A},       // 010
    {KeySet::B, KeySet::B, KeySet::AOrB, KeySet::None},       // 011
    {KeySet::B, KeySet::None, KeySet::AOrB, KeySet::None},    // 100
    {KeySet::None, KeySet::B, KeySet::AOrB, KeySet::None},    // 101
    {KeySet::None, KeySet::None, KeySet::AOrB, KeySet::None}, // 110
    {KeySet::None, KeySet::None, KeySet::AOrB, KeySet::None}, // 111
};

/// Rights as a level: 1 and 2 for key A, 4 and 8 for key B.
int32_t Level(KeySet lower, KeySet upper)
{
    const auto ofKey = [&](KeySet key) { return (Has(lower, key) ? 1 : 0) + (Has(upper, key) ? 2 : 0); };
    return ofKey(KeySet::A) + (ofKey(KeySet::B) << 2);
}

constexpr int32_t RightsOfKeyA = 3;
constexpr unsigned NibbleBits = 4;

/// A byte of a block that the reader sent. A pair that isn't hexadecimal counts as far as it can be read,
/// with blanks skipped: " 5" is 5, like "5 " and "5G", and "G5" is 0.
uint8_t ByteOf(std::wstring_view block, size_t byte)
{
    unsigned value = 0;
    for (const wchar_t character : block.substr(byte * DigitsOfByte, DigitsOfByte)) {
        const std::optional<int> digit = HexDigit(character);
        if (digit) {
            value = value << 4 | static_cast<unsigned>(*digit);
        } else if (character != L' ' && character != L'\t' && character != L'\n') {
            break;
        }
    }
    return static_cast<uint8_t>(value);
}

} // namespace

std::optional<AccessTriple> BlockTriple(int32_t level, uint8_t keysToUse, bool isValueBlock)
{
    if (keysToUse == KeyAAlone) {
        return BlockOfKeyA[level & RightsOfKeyA];
    }
    if (level > HighestLevel) {
        return std::nullopt;
    }
    const std::optional<AccessTriple> triple = BlockOfBothKeys[level];
    return isValueBlock && triple == Bits100 ? OfValueBlock : triple;
}

std::optional<AccessTriple> TrailerTriple(int32_t level, uint8_t keysToUse)
{
    if (keysToUse == KeyAAlone) {
        return TrailerOfKeyA[level & RightsOfKeyA];
    }
    if (level > HighestLevel || (level & RightsOfKeyA) != 0) {
        return std::nullopt;
    }
    return TrailerOfBoth[level / (RightsOfKeyA + 1)];
}

void StoreAccessBits(AccessTriple triple, uint8_t mask, ConditionBytes& bytes)
{
    const auto bits = static_cast<unsigned>(triple);
    const bool c1 = (bits & 4U) != 0;
    const bool c2 = (bits & 2U) != 0;
    const bool c3 = (bits & 1U) != 0;
    const auto store = [mask](uint8_t& byte, bool highBit, bool lowBit) {
        const auto high = static_cast<uint8_t>(mask << NibbleBits);
        byte = static_cast<uint8_t>((byte & ~(high | mask)) | (highBit ? high : 0) | (lowBit ? mask : 0));
    };
    store(bytes[0], /*highBit=*/!c2, /*lowBit=*/!c1);
    store(bytes[1], /*highBit=*/c1, /*lowBit=*/!c3);
    store(bytes[2], /*highBit=*/c3, /*lowBit=*/c2);
}

ConditionBytes ConditionBytesOf(std::wstring_view trailer)
{
    return {ByteOf(trailer, AccessBitsAt), ByteOf(trailer, AccessBitsAt + 1),
            ByteOf(trailer, AccessBitsAt + 2)};
}

uint8_t UserByteOf(std::wstring_view trailer)
{
    return ByteOf(trailer, UserByteAt);
}

AccessTriple TripleIn(const ConditionBytes& bytes, unsigned slot)
{
    const auto bit = [slot](unsigned byte, unsigned nibble) { return byte >> (nibble + slot) & 1U; };
    const unsigned c1 = bit(bytes[1], NibbleBits);
    const unsigned c2 = bit(bytes[2], 0);
    const unsigned c3 = bit(bytes[2], NibbleBits);
    return static_cast<AccessTriple>(c1 << 2 | c2 << 1 | c3);
}

const BlockRights& BlockRightsOf(AccessTriple triple)
{
    return OnBlock[static_cast<size_t>(triple)];
}

const TrailerRights& TrailerRightsOf(AccessTriple triple)
{
    return OnTrailer[static_cast<size_t>(triple)];
}

int32_t LevelOf(const BlockRights& rights)
{
    return Level(rights.Read, rights.Write);
}

int32_t LevelOf(const TrailerRights& rights)
{
    return Level(rights.WriteKeys, rights.WriteConditions);
}

uint8_t KeysUsedBy(const TrailerRights& rights)
{
    return rights.ReadKeyB == KeySet::None ? BothKeys : KeyAAlone;
}

} // namespace acg
