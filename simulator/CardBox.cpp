#include "simulator/CardBox.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

namespace simulator
{

namespace
{

// The two sizes have each their own, so that both can be used in one process with no other option.
constexpr SerialNumber DefaultSerialNumber1K = {0x1D, 0x2C, 0x3B, 0x4A};
constexpr SerialNumber DefaultSerialNumber4K = {0x4D, 0x5C, 0x6B, 0x7A};

Card CardFromImage(const CardOptions& options)
{
    const std::string option = "image=" + options.ImagePath;
    std::ifstream file(options.ImagePath, std::ios::binary);
    if (!file) {
        throw Refusal(option, std::generic_category().message(errno));
    }
    std::vector<uint8_t> image(BlocksOf4K * sizeof(Block) + 1); // one more shows a file that is no card
    file.read(reinterpret_cast<char*>(image.data()), static_cast<std::streamsize>(image.size()));
    image.resize(static_cast<std::size_t>(file.gcount()));
    for (const std::size_t blocks : {BlocksOf1K, BlocksOf4K}) {
        if (image.size() == blocks * sizeof(Block) && options.BlockCount.value_or(blocks) == blocks) {
            return Card(image);
        }
    }
    throw Refusal(option, "expected a file of 1024 bytes, or 4096 for a 4K card, and card= to agree");
}

Card FactoryCard(const CardOptions& options)
{
    const std::size_t blocks = options.BlockCount.value_or(BlocksOf1K);
    return {blocks, blocks == BlocksOf4K ? DefaultSerialNumber4K : DefaultSerialNumber1K};
}

} // namespace

Card* CardBox::Lay(const CardOptions& Options)
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
    Card card = hasImage ? CardFromImage(Options) : FactoryCard(Options);
    if (Options.Number) {
        card.SetSerialNumber(*Options.Number);
    }
    return &m_cards.try_emplace(card.GetSerialNumber(), card).first->second;
}

} // namespace simulator
