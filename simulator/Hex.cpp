#include "simulator/Hex.h"

#include <charconv>

namespace simulator
{

std::string ToHex(std::span<const uint8_t> Bytes)
{
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string text;
    for (const unsigned byte : Bytes) {
        text += Digits[byte >> 4U];
        text += Digits[byte & 0x0FU];
    }
    return text;
}

std::optional<std::vector<uint8_t>> FromHex(std::string_view Text)
{
    if (Text.size() % 2 != 0) {
        return std::nullopt;
    }
    std::vector<uint8_t> bytes(Text.size() / 2);
    const char* pair = Text.data();
    for (uint8_t& byte : bytes) {
        const auto [end, error] = std::from_chars(pair, pair + 2, byte, /*base=*/16);
        if (error != std::errc() || end != pair + 2) {
            return std::nullopt;
        }
        pair = end;
    }
    return bytes;
}

} // namespace simulator
