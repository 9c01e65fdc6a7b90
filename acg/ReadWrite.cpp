// acg read, write and value: blocks of the card, and value blocks.
#include "acg/Blocks.h"
#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Json.h"
#include "acg/Output.h"
#include "acg/Text.h"
#include "cards/BlockAddress.h"

#include <cstdio>

namespace acg::tool
{

namespace
{

struct BlockRange {
    int32_t First;
    int32_t Last;
};

BlockRange ParseBlocks(const std::string& text)
{
    const size_t sign = text.find('-', 1);
    const int32_t first = ParseBlockNumber(text.substr(0, sign));
    const int32_t last = sign == std::string::npos ? first : ParseBlockNumber(text.substr(sign + 1));
    if (last < first) {
        throw UsageError{"BLOCK-BLOCK ends before it begins"};
    }
    return {first, last};
}

/// The data block that a write is meant for.
int32_t ParseDataBlock(const std::string& text)
{
    const int32_t number = ParseBlockNumber(text);
    if (IsTrailer(number)) {
        throw UsageError{Format("block %d is the trailer of sector %d, with its keys: acg protect writes it",
                                number, SectorOf(number))};
    }
    return number;
}

/// What a value block holds three times, and its address.
struct ValueBlock {
    uint32_t Value;
    uint32_t Inverted;
    uint32_t Again;
    uint8_t Address[4];

    explicit ValueBlock(const Block& bytes)
        : Value(NumberAt(bytes, 0)), Inverted(NumberAt(bytes, 4)),
          Again(NumberAt(bytes, 8)), Address{bytes[12], bytes[13], bytes[14], bytes[15]}
    {
    }

    [[nodiscard]] bool HasCopies() const { return Inverted == ~Value && Again == Value; }
    [[nodiscard]] bool HasAddress() const
    {
        return Address[2] == Address[0] && Address[3] == Address[1] && (Address[0] ^ Address[1]) == 0xFF;
    }

private:
    /// The lowest byte first.
    static uint32_t NumberAt(const Block& bytes, size_t at)
    {
        return bytes[at] | uint32_t{bytes[at + 1]} << 8 | uint32_t{bytes[at + 2]} << 16 |
               uint32_t{bytes[at + 3]} << 24;
    }
};

void Print(const ValueBlock& block)
{
    std::printf("Value    %d\n", static_cast<int32_t>(block.Value));
    std::printf("Copies   %s\n", block.HasCopies() ? "agree"
                                                   : Format("disagree: inverted %d, again %d",
                                                            static_cast<int32_t>(~block.Inverted),
                                                            static_cast<int32_t>(block.Again))
                                                         .c_str());
    std::printf("Address  %s\n",
                block.HasAddress() ? Format("%d", block.Address[0]).c_str() : "its four bytes disagree");
}

/// Reads what was just written.
Block ReadBack(Encoder& opened, int32_t number, const Key& key)
{
    try {
        return ReadBlock(opened, number, key);
    } catch (const CardFailure&) {
        PrintProblem("the reader reported no failure of the writing, but reading back fails");
        throw;
    }
}

} // namespace

int Read(const Options& Options)
{
    const BlockRange range = ParseBlocks(Options.Blocks);
    const Key key = TheKey(Options.Key);
    const auto encoder = OpenReader(Options.Parameters);
    std::vector<ShownBlock> shown;
    for (int32_t number = range.First; number <= range.Last; ++number) {
        const Block block = ReadBlock(*encoder, number, key);
        const uint16_t known = IsTrailer(number) ? AllButKeys : AllKnown;
        if (Options.Json) {
            shown.push_back({number, Digits(block, known, ""), Characters(block, known)});
        } else {
            std::puts(HexDump(number, block, known).c_str());
        }
    }
    if (Options.Json) {
        std::fputs(Json(shown).c_str(), stdout);
    }
    return Done;
}

int Write(const Options& Options)
{
    const int32_t number = ParseDataBlock(Options.Blocks);
    const std::optional<Block> wanted = ParseBlock(Options.Contents);
    if (!wanted) {
        throw UsageError{"HEX isn't 32 hexadecimal digits"};
    }
    const Key key = TheKey(Options.Key);
    const auto encoder = OpenReader(Options.Parameters);
    std::wstring contents = ToWide(Digits(*wanted, AllKnown, ""));
    Must(*encoder, encoder->WriteDataBloc(number, key.Digits, key.Type, contents));
    const Block written = ReadBack(*encoder, number, key);
    std::puts(HexDump(number, written, AllKnown).c_str());
    if (written != *wanted) {
        throw OtherFailure{Format("block %d reads back as something other than was written", number)};
    }
    return Done;
}

int Value(const Options& Options)
{
    const int32_t number = ParseDataBlock(Options.Blocks);
    std::optional<int32_t> wanted;
    if (!Options.Number.empty()) {
        wanted = ParseNumber(Options.Number, INT32_MIN, INT32_MAX,
                             "NUMBER is a whole number from -2147483648 to 2147483647");
    }
    const Key key = TheKey(Options.Key);
    const auto encoder = OpenReader(Options.Parameters);
    if (wanted) {
        Must(*encoder, encoder->WriteValueBloc(number, key.Digits, key.Type, *wanted));
    }
    const ValueBlock block(wanted ? ReadBack(*encoder, number, key) : ReadBlock(*encoder, number, key));
    Print(block);
    if (wanted && static_cast<int32_t>(block.Value) != *wanted) {
        throw OtherFailure{Format("block %d reads back as something other than was written", number)};
    }
    if (!block.HasCopies() || !block.HasAddress()) {
        throw OtherFailure{Format("block %d isn't a value block", number)};
    }
    return Done;
}

} // namespace acg::tool
