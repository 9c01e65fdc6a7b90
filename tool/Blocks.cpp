#include "tool/Blocks.h"

#include "acg/cards/BlockAddress.h"
#include "tool/Failures.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

int32_t NumberAt(const Block& bytes, size_t at)
{
    return static_cast<int32_t>(bytes[at] | uint32_t{bytes[at + 1]} << 8 | uint32_t{bytes[at + 2]} << 16 |
                                uint32_t{bytes[at + 3]} << 24);
}

} // namespace

std::string Digits(const Block& bytes, uint16_t known, std::string_view between)
{
    std::string digits;
    for (size_t at = 0; at < bytes.size(); ++at) {
        digits += at == 0 ? "" : between;
        digits += (known >> at & 1) != 0 ? Format("%02X", bytes[at]) : "--";
    }
    return digits;
}

std::string Characters(const Block& bytes, uint16_t known)
{
    std::string characters;
    for (size_t at = 0; at < bytes.size(); ++at) {
        const bool isPrintable = bytes[at] >= ' ' && bytes[at] <= '~' && (known >> at & 1) != 0;
        characters += isPrintable ? static_cast<char>(bytes[at]) : '.';
    }
    return characters;
}

std::string HexDump(int32_t number, const Block& bytes, uint16_t known)
{
    return Format("%3d  %s  |%s|", number, Digits(bytes, known, " ").c_str(),
                  Characters(bytes, known).c_str());
}

bool IsTrailer(int32_t number)
{
    return number == TrailerBlock(SectorOf(number));
}

unsigned SlotOf(int32_t number)
{
    const int32_t first = TrailerBlock(SectorOf(number) - 1) + 1;
    const int32_t blocksInSlot = (TrailerBlock(SectorOf(number)) - first) / static_cast<int32_t>(DataSlots);
    return static_cast<unsigned>((number - first) / blocksInSlot);
}

int32_t ParseBlockNumber(std::string_view text)
{
    return ParseNumber(
        text, 0, LastBlock,
        "a block is a number from 0 to 255, on a 1K card to 63; acg read takes several, as in 4-6");
}

int32_t ParseDataBlock(std::string_view text)
{
    const int32_t number = ParseBlockNumber(text);
    if (number == 0) {
        throw UsageError{"block 0, the manufacturer's, can't be written; acg read 0 shows it"};
    }
    if (IsTrailer(number)) {
        throw UsageError{Format("block %d is the trailer of sector %d, with its keys: acg protect writes it",
                                number, SectorOf(number))};
    }
    return number;
}

ValueBlock::ValueBlock(const Block& bytes)
    : Value(NumberAt(bytes, 0)), Inverted(~NumberAt(bytes, 4)), Again(NumberAt(bytes, 8))
{
    if (bytes[14] == bytes[12] && bytes[15] == bytes[13] && (bytes[12] ^ bytes[13]) == 0xFF) {
        Address = bytes[12];
    }
}

std::string ReadCommand(int32_t number, const LoginKey& key)
{
    return Format("acg read %d --key KEY%s", number, key.Option());
}

} // namespace acg::tool
