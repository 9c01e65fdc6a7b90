#include "simulator/CardBox.h"

#include "acg/platform/AnsiText.h"
#include "acg/platform/FileReplacement.h"
#include "acg/platform/HexText.h"

#include <span>
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

Card FactoryCard(const CardOptions& options)
{
    const std::size_t blocks = options.BlockCount.value_or(BlocksOf1K);
    return {blocks, blocks == BlocksOf4K ? DefaultSerialNumber4K : DefaultSerialNumber1K};
}

Card CardFromImage(const CardOptions& options)
{
    const std::string option = (options.IsInFolder ? "cards=" : "image=") + options.ImagePath;
    std::vector<uint8_t> image(BlocksOf4K * sizeof(Block) + 1); // one more shows a file that is no card
    const std::error_code error = acg::ReadContents(acg::PathFromAnsi(options.ImagePath), image);
    if (error == std::errc::no_such_file_or_directory && options.ImagePath == options.SavePath) {
        return FactoryCard(options); // which the next process finds there
    }
    if (error) {
        throw Refusal(option, error.message());
    }
    for (const std::size_t blocks : {BlocksOf1K, BlocksOf4K}) {
        if (image.size() == blocks * sizeof(Block) && options.BlockCount.value_or(blocks) == blocks) {
            return Card(image);
        }
    }
    throw Refusal(option, "expected a file of 1024 bytes, or 4096 for a 4K card, and card= to agree");
}

} // namespace

CardOptions InFolder(CardOptions card, const std::string& folder)
{
    if (!folder.empty() && card.BlockCount != 0U) {
        card.Number = card.Number.value_or(FactoryCard(card).GetSerialNumber());
        card.ImagePath = card.SavePath = folder + '/' + acg::ToHex(*card.Number) + ".bin";
        card.IsInFolder = true;
    }
    return card;
}

void SaveImage(const Card& saved, const CardOptions& options)
{
    const std::span<const Block> image = saved.Image();
    acg::FileReplacement file;
    std::error_code error = file.Create(acg::PathFromAnsi(options.SavePath), acg::ExistingFile::Replaced);
    if (!error) {
        error = file.Finish({reinterpret_cast<const char*>(image.data()), image.size_bytes()});
    }
    if (error) {
        throw Refusal((options.IsInFolder ? "cards=" : "save=") + options.SavePath,
                      error == acg::NotARegularFile ? "not a regular file" : error.message());
    }
}

Card* CardBox::Place(const CardOptions& options)
{
    if (options.BlockCount == 0U && options.ImagePath.empty()) {
        return nullptr;
    }
    auto card = options.Number ? m_cards.find(*options.Number) : m_cards.end();
    if (card == m_cards.end()) {
        Card created = options.ImagePath.empty() ? FactoryCard(options) : CardFromImage(options);
        if (options.Number) {
            created.SetSerialNumber(*options.Number);
        }
        card = m_cards.try_emplace(created.GetSerialNumber(), created).first;
    }
    if (!options.SavePath.empty()) {
        SaveImage(card->second, options);
    }
    return &card->second;
}

} // namespace simulator
