#include "simulator/Card.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <initializer_list>
#include <utility>

namespace simulator
{

namespace
{

// The first 32 sectors have 4 blocks, the others 16.
constexpr std::size_t SmallSectors = 32;
constexpr std::size_t SmallSectorBlocks = 4;
constexpr std::size_t LargeSectorBlocks = 16;
constexpr std::size_t SmallSectorsEnd = SmallSectors * SmallSectorBlocks;

// In a large sector one slot of the access bits stands for five data blocks.
constexpr std::size_t BlocksInLargeSlot = 5;
constexpr std::size_t TrailerSlot = 3;

//  The trailer:
//
//   byte   0 .. 5     6 .. 8        9          10 .. 15
//        +---------+-------------+-----------+----------+
//        |  key A  | access bits | user byte |  key B   |
//        +---------+-------------+-----------+----------+
//
//  Its access bits; the figure is the slot, ~ marks the inverted copy:
//
//     bit    7    6    5    4    3    2    1    0
//   byte 6  ~C2.3 ~C2.2 ~C2.1 ~C2.0 ~C1.3 ~C1.2 ~C1.1 ~C1.0
//   byte 7   C1.3  C1.2  C1.1  C1.0 ~C3.3 ~C3.2 ~C3.1 ~C3.0
//   byte 8   C3.3  C3.2  C3.1  C3.0  C2.3  C2.2  C2.1  C2.0
struct Field {
    std::size_t Begin;
    std::size_t Size;
};
constexpr Field KeyA = {0, KeySize};
constexpr Field AccessBits = {6, 4}; // with the user byte, which goes by the rights of the access bits
constexpr Field KeyB = {10, KeySize};

constexpr Block FactoryTrailer = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x07,
                                  0x80, 0x69, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

// The manufacturer writes the rest of block 0 after the serial number and its check byte.
constexpr std::size_t CheckByte = 4;
constexpr Block FactoryBlock0 = {0, 0, 0, 0, 0, 0x08, 0x04, 0x00, 'S', 'I', 'M', 'U', 'L', 'A', 'T', 'E'};

/// The keys that have a right, as a set.
enum KeySet : unsigned {
    Never = 0,
    A = 1,
    B = 2,
    AorB = A | B
};

struct DataRights {
    KeySet Read;
    KeySet Write;
};

// The row is C1 C2 C3 read as a binary number. The rights to increment and to decrement are left out: the
// reader has no command for either.
constexpr DataRights DataTable[] = {
    //           read  write
    /* 000 */ {AorB, AorB},
    /* 001 */ {AorB, Never},
    /* 010 */ {AorB, Never},
    /* 011 */ {B, B},
    /* 100 */ {AorB, B},
    /* 101 */ {B, Never},
    /* 110 */ {AorB, B},
    /* 111 */ {Never, Never},
};

struct TrailerRights {
    KeySet WriteKeyA;
    KeySet ReadBits;
    KeySet WriteBits;
    KeySet ReadKeyB;
    KeySet WriteKeyB;
};

// The row is C1 C2 C3 read as a binary number.
constexpr TrailerRights TrailerTable[] = {
    //       key A  access bits  key B
    //       write  read  write  read  write
    /* 000 */ {A, A, Never, A, A},
    /* 001 */ {A, A, A, A, A},
    /* 010 */ {Never, A, Never, A, Never},
    /* 011 */ {B, AorB, B, Never, B},
    /* 100 */ {B, AorB, Never, Never, B},
    /* 101 */ {Never, AorB, B, Never, Never},
    /* 110 */ {Never, AorB, Never, Never, Never},
    /* 111 */ {Never, AorB, Never, Never, Never},
};

bool Allows(KeySet holders, KeyType type)
{
    return (holders & (type == KeyType::A ? A : B)) != 0;
}

/// Copies the fields to which the key has the right; true if there is one.
bool CopyFields(const Block& from, Block& to, KeyType type,
                std::initializer_list<std::pair<Field, KeySet>> fields)
{
    bool copied = false;
    for (const auto& [place, holders] : fields) {
        if (Allows(holders, type)) {
            std::copy_n(from.begin() + place.Begin, place.Size, to.begin() + place.Begin);
            copied = true;
        }
    }
    return copied;
}

std::size_t TrailerOf(std::size_t sector)
{
    return FirstBlockOf(sector + 1) - 1;
}

/// The place in the trailer's access bits that rules the block.
std::size_t SlotOf(std::size_t block)
{
    return block < SmallSectorsEnd ? block % SmallSectorBlocks
                                   : block % LargeSectorBlocks / BlocksInLargeSlot;
}

/// C1 C2 C3 of the slot as a binary number; nothing if any of the trailer's bits is not the opposite of
/// its inverted copy. That blocks the whole sector for good, since no access is left that could mend it.
std::optional<unsigned> ConditionInTrailer(const Block& trailer, std::size_t slot)
{
    const unsigned all =
        trailer[6] | static_cast<unsigned>(trailer[7]) << 8U | static_cast<unsigned>(trailer[8]) << 16U;
    const std::bitset<12> inverted(all);
    const std::bitset<12> bits(all >> inverted.size()); // C3, C2, C1, each with four slots
    if (bits != ~inverted) {
        return std::nullopt;
    }
    const auto bit = [&](std::size_t place) { return bits[place] ? 1U : 0U; };
    return bit(slot) << 2U | bit(slot + 4) << 1U | bit(slot + 8);
}

} // namespace

std::size_t SectorOf(std::size_t blockNumber)
{
    return blockNumber < SmallSectorsEnd ? blockNumber / SmallSectorBlocks
                                         : SmallSectors + (blockNumber - SmallSectorsEnd) / LargeSectorBlocks;
}

std::size_t FirstBlockOf(std::size_t sectorNumber)
{
    return sectorNumber < SmallSectors ? sectorNumber * SmallSectorBlocks
                                       : SmallSectorsEnd + (sectorNumber - SmallSectors) * LargeSectorBlocks;
}

bool IsTrailer(std::size_t blockNumber)
{
    return blockNumber == TrailerOf(SectorOf(blockNumber));
}

Card::Card(std::size_t blocks, const SerialNumber& number) : m_blocks(blocks)
{
    m_blocks.front() = FactoryBlock0;
    SetSerialNumber(number);
    for (std::size_t block = 0; block < blocks; ++block) {
        if (IsTrailer(block)) {
            m_blocks[block] = FactoryTrailer;
        }
    }
}

Card::Card(std::span<const uint8_t> image) : m_blocks(image.size() / sizeof(Block))
{
    std::memcpy(m_blocks.data(), image.data(), m_blocks.size() * sizeof(Block));
}

void Card::SetSerialNumber(const SerialNumber& number)
{
    Block& block0 = m_blocks.front();
    std::ranges::copy(number, block0.begin());
    block0[CheckByte] = number[0] ^ number[1] ^ number[2] ^ number[3];
}

SerialNumber Card::GetSerialNumber() const
{
    const Block& block0 = m_blocks.front();
    return {block0[0], block0[1], block0[2], block0[3]};
}

bool Card::Login(std::size_t sector, KeyType type, std::span<const uint8_t, KeySize> key) const
{
    const Block& trailer = m_blocks[TrailerOf(sector)];
    const Field& field = type == KeyType::A ? KeyA : KeyB;
    return ConditionInTrailer(trailer, TrailerSlot) &&
           std::equal(key.begin(), key.end(), trailer.begin() + field.Begin);
}

/// C1 C2 C3 of the block; nothing if the sector is blocked, or if key B can be read and so has no right
/// to anything.
std::optional<unsigned> Card::ConditionOf(std::size_t number, KeyType type) const
{
    const Block& trailer = m_blocks[TrailerOf(SectorOf(number))];
    const std::optional<unsigned> ofTrailer = ConditionInTrailer(trailer, TrailerSlot);
    if (!ofTrailer || (type == KeyType::B && TrailerTable[*ofTrailer].ReadKeyB != Never)) {
        return std::nullopt;
    }
    return ConditionInTrailer(trailer, SlotOf(number));
}

std::optional<Block> Card::Read(std::size_t number, KeyType type) const
{
    const std::optional<unsigned> condition = ConditionOf(number, type);
    if (!condition) {
        return std::nullopt;
    }
    const Block& stored = m_blocks[number];
    if (!IsTrailer(number)) {
        return Allows(DataTable[*condition].Read, type) ? std::optional(stored) : std::nullopt;
    }
    const TrailerRights& rights = TrailerTable[*condition];
    Block seen = {};
    CopyFields(stored, seen, type, {{AccessBits, rights.ReadBits}, {KeyB, rights.ReadKeyB}});
    return seen;
}

std::optional<Block> Card::Write(std::size_t number, KeyType type, const Block& contents)
{
    const std::optional<unsigned> condition = ConditionOf(number, type);
    if (!condition || number == 0) {
        return std::nullopt;
    }
    Block& stored = m_blocks[number];
    if (!IsTrailer(number)) {
        return Allows(DataTable[*condition].Write, type) ? std::optional(stored = contents) : std::nullopt;
    }
    const TrailerRights& rights = TrailerTable[*condition];
    if (!CopyFields(contents, stored, type,
                    {{KeyA, rights.WriteKeyA}, {AccessBits, rights.WriteBits}, {KeyB, rights.WriteKeyB}})) {
        return std::nullopt;
    }
    Block shown = {};
    CopyFields(stored, shown, type, {{AccessBits, AorB}});
    return shown;
}

} // namespace simulator
