// A Mifare Classic card: its geometry, its access rights and its contents, written from chapter 8 (memory
// organisation, memory access) of the product data sheets of NXP Semiconductors: "MIFARE Classic EV1 1K -
// Mainstream contactless smart card IC for fast and easy solution development", MF1S50YYX_V1, revision 3.2,
// and the same for 4K, MF1S70YYX_V1, revision 3.2.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace simulator
{

using Block = std::array<uint8_t, 16>;
using SerialNumber = std::array<uint8_t, 4>;

inline constexpr std::size_t KeySize = 6;

/// A 1K card has 16 sectors of 4 blocks; a 4K card has 32 of them and then 8 sectors of 16 blocks.
inline constexpr std::size_t BlocksOf1K = 64;
inline constexpr std::size_t BlocksOf4K = 256;

/// Blocks and sectors are counted through the whole card from 0. The last block of a sector is its trailer.
[[nodiscard]] std::size_t SectorOf(std::size_t blockNumber);
[[nodiscard]] std::size_t FirstBlockOf(std::size_t sectorNumber);
[[nodiscard]] bool IsTrailer(std::size_t blockNumber);

enum class KeyType {
    A,
    B
};

/// What lies in the field: memory that judges every access by its sector's trailer.
///
/// The card does not remember who has logged in; the reader does, and passes the key type of that login
/// with each access. Block and sector numbers must be ones that the card has.
class Card
{
public:
    /// A card as it leaves the factory. blocks: BlocksOf1K or BlocksOf4K.
    Card(std::size_t blocks, const SerialNumber& number);

    /// A card with the contents of an image, block after block.
    explicit Card(std::span<const uint8_t> image);

    /// Writes the serial number and its check byte into block 0. No reader can do that.
    void SetSerialNumber(const SerialNumber& number);
    [[nodiscard]] SerialNumber GetSerialNumber() const;

    [[nodiscard]] std::size_t BlockCount() const { return m_blocks.size(); }

    /// The card's contents, keys included, as an image has them.
    [[nodiscard]] std::span<const Block> Image() const { return m_blocks; }

    /// True if the key is that of the sector. A key B that can be read is no key: it passes here, and
    /// every access after it is refused.
    [[nodiscard]] bool Login(std::size_t sector, KeyType type, std::span<const uint8_t, KeySize> key) const;

    /// Returns the block as this key reads it, nothing if the card refuses. Key A is never readable.
    [[nodiscard]] std::optional<Block> Read(std::size_t number, KeyType type) const;

    /// Returns the new block, a trailer with both keys as zeros, and nothing if the card refuses. Of a
    /// trailer only those fields change that this key may write.
    [[nodiscard]] std::optional<Block> Write(std::size_t number, KeyType type, const Block& contents);

private:
    [[nodiscard]] std::optional<unsigned> ConditionOf(std::size_t number, KeyType type) const;

    std::vector<Block> m_blocks;
};

} // namespace simulator
