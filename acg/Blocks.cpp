#include "acg/Blocks.h"

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

} // namespace acg::tool
