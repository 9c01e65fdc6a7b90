// Sectors as the tests of the tool write them.
#pragma once

#include "acg/cards/BlockAddress.h"
#include "acg/platform/HexText.h"
#include "tool/Blocks.h"
#include "tool/DumpFile.h"

#include <sstream>

namespace acg::tool
{

/// A key of which all digits are the same.
inline Key KeyOf(char digit)
{
    Key key;
    key.fill(static_cast<uint8_t>(HexDigit(digit).value_or(0) * 0x11));
    return key;
}

inline LoginKey LoginOf(const std::string& typeAndDigit)
{
    return {KeyOf(typeAndDigit[1]), typeAndDigit[0] == 'A' ? KeyTypeA : KeyTypeB};
}

/// From words, of the three data slots and the trailer: "11" is 16 of such bytes, "=5" a value block,
/// "A78778869B" a trailer whose keys consist of that digit; hyphens are unknown bytes. A word that isn't
/// there is an unknown block.
inline Dump SectorOfWords(const std::string& words, int32_t sector = 1)
{
    std::istringstream all(words);
    std::string slots[SectorSlots];
    for (std::string& word : slots) {
        word = all >> word ? word : "--";
    }
    Dump blocks;
    for (int32_t number = TrailerBlock(sector - 1) + 1; number <= TrailerBlock(sector); ++number) {
        const std::string& word = slots[SlotOf(number)];
        std::string digits;
        if (word[0] == '=') {
            const auto value = static_cast<uint8_t>(word[1] - '0');
            const auto address = static_cast<uint8_t>(number);
            const auto inverted = [](uint8_t byte) { return static_cast<uint8_t>(~byte); };
            blocks.push_back({{value, 0, 0, 0, inverted(value), 0xFF, 0xFF, 0xFF, value, 0, 0, 0, address,
                               inverted(address), address, inverted(address)},
                              WholeBlock});
            continue;
        }
        if (IsTrailer(number) && word.size() > 2) {
            digits = std::string(12, word.front()) + word.substr(1, 8) + std::string(12, word.back());
        }
        for (size_t at = 0; digits.size() < 32; ++at) {
            digits += word[at % 2];
        }
        DumpedBlock& block = blocks.emplace_back();
        for (size_t at = 0; at < block.Bytes.size(); ++at) {
            if (digits[2 * at] != '-') {
                block.Bytes[at] = static_cast<uint8_t>(std::stoi(digits.substr(2 * at, 2), nullptr, 16));
                block.Known = static_cast<uint16_t>(block.Known | BitsOf(at, 1));
            }
        }
    }
    return blocks;
}

} // namespace acg::tool
