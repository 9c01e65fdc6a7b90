#include "simulator/CardBox.h"

#include <fstream>
#include <string>
#include <vector>

namespace simulator
{

namespace
{

// The two sizes have each their own, so that both can be used in one process with no other option.
constexpr SerialNumber DefaultSerialNumber1K = {0x1D, 0x2C, 0x3B, 0x4A};
constexpr SerialNumber DefaultSerialNumber4K = {0x4D, 0x5C, 0x6B, 0x7A};

/// Gives at most one byte more than the largest card has, which is enough to see that the file is no card.
std::vector<uint8_t> ReadFile(const std::string& path)
{
    std::vector<uint8_t> bytes(BlocksOf4K * sizeof(Block) + 1);
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

std::optional<Card> CardFromImage(const CardOptions& options)
{
    const std::vector<uint8_t> image = ReadFile(options.ImagePath);
    for (const std::size_t blocks : {BlocksOf1K, BlocksOf4K}) {
        if (image.size() == blocks * sizeof(Block) && options.BlockCount.value_or(blocks) == blocks) {
            return Card(image);
        }
    }
    return std::nullopt;
}

Card FactoryCard(const CardOptions& options)
{
    const std::size_t blocks = options.BlockCount.value_or(BlocksOf1K);
    return {blocks, blocks == BlocksOf4K ? DefaultSerialNumber4K : DefaultSerialNumber1K};
}

} // namespace

std::optional<Card*> CardBox::Lay(const CardOptions& Options)
{
    const bool hasImage = !Options.ImagePath.empty();
    if (Options.BlockCount == 0U && !hasImage) {
        return nullptr;
    }
    if (Options.Number) {
        if (const auto known = m_cards.find(*Options.Number); known != m_cards.end()) {
            return &known->second;
        }
    }
    std::optional<Card> card = hasImage ? CardFromImage(Options) : FactoryCard(Options);
    if (!card) {
        return std::nullopt;
    }
    if (Options.Number) {
        card->SetSerialNumber(*Options.Number);
    }
    return &m_cards.try_emplace(card->GetSerialNumber(), *card).first->second;
}

} // namespace simulator
