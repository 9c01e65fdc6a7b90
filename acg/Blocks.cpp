#include "acg/Blocks.h"

#include "acg/Failures.h"
#include "acg/Text.h"
#include "cards/BlockAddress.h"

namespace acg::tool
{

std::string Digits(const Block& Bytes, uint16_t Known, std::string_view Between)
{
    std::string digits;
    for (size_t at = 0; at < Bytes.size(); ++at) {
        digits += at == 0 ? "" : Between;
        digits += (Known >> at & 1) != 0 ? Format("%02X", Bytes[at]) : "--";
    }
    return digits;
}

std::string Characters(const Block& Bytes, uint16_t Known)
{
    std::string characters;
    for (size_t at = 0; at < Bytes.size(); ++at) {
        const bool isPrintable = Bytes[at] >= ' ' && Bytes[at] <= '~' && (Known >> at & 1) != 0;
        characters += isPrintable ? static_cast<char>(Bytes[at]) : '.';
    }
    return characters;
}

std::string HexDump(int32_t Number, const Block& Bytes, uint16_t Known)
{
    return Format("%3d  %s  |%s|", Number, Digits(Bytes, Known, " ").c_str(),
                  Characters(Bytes, Known).c_str());
}

bool IsTrailer(int32_t Number)
{
    return Number == TrailerBlock(SectorOf(Number));
}

int32_t ParseBlockNumber(std::string_view Text)
{
    return ParseNumber(Text, 0, LastBlock, "BLOCK is a number from 0 to 255, on a 1K card to 63");
}

int32_t ParseDataBlock(std::string_view Text)
{
    const int32_t number = ParseBlockNumber(Text);
    if (number == 0) {
        throw UsageError{"block 0 can't be written: it is the manufacturer's; acg read 0 shows it"};
    }
    if (IsTrailer(number)) {
        throw UsageError{Format("block %d is the trailer of sector %d, with its keys: acg protect writes it",
                                number, SectorOf(number))};
    }
    return number;
}

Block ReadBack(Encoder& Opened, int32_t Number, const Key& With, Output& Out)
{
    try {
        return ReadBlock(Opened, Number, With);
    } catch (const CardFailure&) {
        Out.Problem("the reader reported no failure of the writing, but reading back fails");
        throw;
    }
}

} // namespace acg::tool
