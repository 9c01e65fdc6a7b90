#include "cards/AccessBits.h"

#include "encoder/Enums.h"

namespace acg
{

namespace
{

// In the comments: r reads, w writes, - neither.

/// Bits 0 and 1 of the level, key A's rights, for a sector that works with key A alone.
constexpr AccessTriple BlockOfKeyA[] = {
    "111", // 0  -
    "001", // 1  r
    "000", // 2  w
    "000", // 3  rw
};

constexpr AccessTriple BlockOfBothKeys[HighestLevel + 1] = {
    //            key A  key B
    "111",        //  0   -      -
    RefusedLevel, //  1   r      -
    RefusedLevel, //  2   w      -
    RefusedLevel, //  3   rw     -
    "101",        //  4   -      r
    "001",        //  5   r      r
    RefusedLevel, //  6   w      r
    RefusedLevel, //  7   rw     r
    "011",        //  8   -      w
    "100",        //  9   r      w
    "000",        // 10   w      w
    "000",        // 11   rw     w
    "011",        // 12   -      rw
    "100",        // 13   r      rw
    "000",        // 14   w      rw
    "000",        // 15   rw     rw
};

/// In place of 100, where the block was written as a value block since the opening.
constexpr AccessTriple OfValueBlock = "110";

/// Bits 0 and 1 of the level, what key A may write, for a sector that works with key A alone.
constexpr AccessTriple TrailerOfKeyA[] = {
    "010", // 0  nothing
    "000", // 1  keys
    "001", // 2  conditions
    "001", // 3  keys and conditions
};

/// Bits 2 and 3 of the level, what key B may write. A level with rights of key A is refused.
constexpr AccessTriple TrailerOfBoth[] = {
    "111", //  0  nothing
    "100", //  4  keys
    "101", //  8  conditions
    "011", // 12  keys and conditions
};

constexpr DecodedAccess Decoded[] = {
    // keys A and B of a data block; what is written of the trailer
    {15, KeyAAlone, 1}, // 000  rw rw; by A, keys
    {5, KeyAAlone, 3},  // 001  r  r;  by A, keys and conditions
    {5, KeyAAlone, 0},  // 010  r  r;  nothing
    {12, BothKeys, 12}, // 011  -  rw; by B, keys and conditions
    {13, BothKeys, 4},  // 100  r  rw; by B, keys
    {4, BothKeys, 8},   // 101  -  r;  by B, conditions
    {13, BothKeys, 0},  // 110  r  rw; nothing
    {0, BothKeys, 0},   // 111  -  -;  nothing
};

constexpr int32_t RightsOfKeyA = 3;
constexpr unsigned NibbleBits = 4;

constexpr uint8_t HighNibble(uint8_t mask)
{
    return static_cast<uint8_t>(mask << NibbleBits);
}

} // namespace

AccessTriple BlockTriple(int32_t Level, uint8_t KeysToUse, bool IsValueBlock)
{
    if (KeysToUse == KeyAAlone) {
        return BlockOfKeyA[Level & RightsOfKeyA];
    }
    if (Level > HighestLevel) {
        return RefusedLevel;
    }
    const AccessTriple triple = BlockOfBothKeys[Level];
    return IsValueBlock && triple == "100" ? OfValueBlock : triple;
}

AccessTriple TrailerTriple(int32_t Level, uint8_t KeysToUse)
{
    if (KeysToUse == KeyAAlone) {
        return TrailerOfKeyA[Level & RightsOfKeyA];
    }
    const bool isStorable = Level <= HighestLevel && (Level & RightsOfKeyA) == 0;
    return isStorable ? TrailerOfBoth[Level / (RightsOfKeyA + 1)] : RefusedLevel;
}

void StoreAccessBits(AccessTriple Triple, uint8_t Mask, ConditionBytes& Bytes)
{
    const bool c1 = Triple[0] == '1';
    const bool c2 = Triple[1] == '1';
    const bool c3 = Triple[2] == '1';
    const auto store = [Mask](uint8_t& byte, bool highBit, bool lowBit) {
        const uint8_t high = HighNibble(Mask);
        byte = static_cast<uint8_t>((byte & ~(high | Mask)) | (highBit ? high : 0) | (lowBit ? Mask : 0));
    };
    store(Bytes[0], /*highBit=*/!c2, /*lowBit=*/!c1);
    store(Bytes[1], /*highBit=*/c1, /*lowBit=*/!c3);
    store(Bytes[2], /*highBit=*/c3, /*lowBit=*/c2);
}

const DecodedAccess& DecodeSlot(const ConditionBytes& Bytes, unsigned Slot)
{
    const auto bit = [Slot](unsigned byte, unsigned nibble) { return byte >> (nibble + Slot) & 1U; };
    const unsigned c1 = bit(Bytes[1], NibbleBits);
    const unsigned c2 = bit(Bytes[2], 0);
    const unsigned c3 = bit(Bytes[2], NibbleBits);
    return Decoded[c1 << 2 | c2 << 1 | c3];
}

} // namespace acg
