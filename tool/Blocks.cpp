#include "tool/Blocks.h"

#include "acg/cards/BlockAddress.h"
#include "tool/Failures.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

uint32_t NumberAt(const Block& bytes, size_t at)
{
    return bytes[at] | uint32_t{bytes[at + 1]} << 8 | uint32_t{bytes[at + 2]} << 16 |
           uint32_t{bytes[at + 3]} << 24;
}

} // namespace

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

Refusal TryReadBlock(Encoder& Opened, int32_t Number, const Key& With, Block& Contents)
{
    try {
        Contents = ReadBlock(Opened, Number, With);
        return Refusal::None;
    } catch (const CardFailure& failure) {
        const CError& record = failure.Record;
        const bool isLogin = record.RdrCommand.ends_with(L"login");
        const wchar_t letter = record.RdrRetCode.empty() ? L'\0' : record.RdrRetCode.front();
        if ((!isLogin && !record.RdrCommand.ends_with(L"read block")) || letter == L'\0' || letter == L'N') {
            throw;
        }
        // A reader that doesn't judge the login answers O or R to the block command.
        return isLogin || letter == L'O' || letter == L'R' ? Refusal::WrongKey : Refusal::NotGranted;
    }
}

ValueBlock::ValueBlock(const Block& Bytes)
    : m_value(NumberAt(Bytes, 0)), m_inverted(NumberAt(Bytes, 4)),
      m_again(NumberAt(Bytes, 8)), m_address{Bytes[12], Bytes[13], Bytes[14], Bytes[15]}
{
}

std::optional<uint8_t> ValueBlock::Address() const
{
    const bool isConsistent =
        m_address[2] == m_address[0] && m_address[3] == m_address[1] && (m_address[0] ^ m_address[1]) == 0xFF;
    return isConsistent ? std::optional(m_address[0]) : std::nullopt;
}

std::string ReadCommand(int32_t Number, const Key& With)
{
    return Format("acg read %d --key KEY%s", Number, With.Type == KeyTypeB ? " --as-b" : "");
}

} // namespace acg::tool
