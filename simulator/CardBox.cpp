#include "simulator/CardBox.h"

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#endif

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
    const std::string option = "image=" + options.ImagePath;
    std::ifstream file(options.ImagePath, std::ios::binary);
    if (!file && errno == ENOENT && options.ImagePath == options.SavePath) {
        return FactoryCard(options); // which the next process finds there
    }
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

/// The card with the contents that it has when its number is laid for the first time.
Card NewCard(const CardOptions& options)
{
    Card card = options.ImagePath.empty() ? FactoryCard(options) : CardFromImage(options);
    if (options.Number) {
        card.SetSerialNumber(*options.Number);
    }
    return card;
}

/// Replaces a file of the name at once.
std::error_code Rename(const std::string& from, const std::string& to)
{
#ifdef _WIN32 // its std::rename replaces no file
    return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE
               ? std::error_code()
               : std::error_code(static_cast<int>(GetLastError()), std::system_category());
#else
    return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code()
                                                      : std::error_code(errno, std::generic_category());
#endif
}

} // namespace

void SaveImage(const Card& Saved, const std::string& Path)
{
    const std::string newPath = Path + ".new";
    const std::span<const Block> image = Saved.Image();
    std::ofstream file(newPath, std::ios::binary);
    file.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size_bytes()));
    file.close();
    const std::error_code error =
        file ? Rename(newPath, Path) : std::error_code(errno != 0 ? errno : EIO, std::generic_category());
    if (error) {
        static_cast<void>(std::remove(newPath.c_str()));
        throw Refusal("save=" + Path, error.message());
    }
}

Card* CardBox::Lay(const CardOptions& Options)
{
    if (Options.BlockCount == 0U && Options.ImagePath.empty()) {
        return nullptr;
    }
    auto place = Options.Number ? m_cards.find(*Options.Number) : m_cards.end();
    if (place == m_cards.end()) {
        const Card card = NewCard(Options);
        place = m_cards.try_emplace(card.GetSerialNumber(), card).first;
    }
    if (!Options.SavePath.empty()) {
        SaveImage(place->second, Options.SavePath);
    }
    return &place->second;
}

} // namespace simulator
