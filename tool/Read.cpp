// acg read: blocks in hexadecimal and as characters.
#include "tool/Blocks.h"
#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/DumpFile.h"
#include "tool/Failures.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

struct Options {
    std::string Blocks;
    KeyOptions Key;
    std::string From; ///< --from
};

int Read(const Options& options, Context& context)
{
    const auto [first, last] = ParseRange(options.Blocks, ParseBlockNumber);
    JsonObject& blocks = context.Out.Json["blocks"] = JsonObject::array();
    const auto show = [&](int32_t number, const DumpedBlock& block) {
        const auto known = static_cast<uint16_t>(block.Known & (IsTrailer(number) ? AllButKeys : WholeBlock));
        context.Out.Print(HexDump(number, block.Bytes, known));
        blocks.push_back({{"block", number},
                          {"hex", Digits(block.Bytes, known, "")},
                          {"characters", Characters(block.Bytes, known)}});
    };
    if (!options.From.empty()) {
        const Dump dump = ReadDump(options.From);
        for (int32_t number = first; number <= last; ++number) {
            show(number, BlockIn(dump, number));
        }
        return Done;
    }
    const LoginKey key = ReadLoginKey(options.Key);
    CardSession card(context.Reader);
    if (first == last) {
        show(first, {card.ReadBlock(first, key), WholeBlock});
        return Done;
    }
    bool isAll = true;
    for (int32_t number = first; number <= last; ++number) {
        DumpedBlock block{.Known = WholeBlock};
        if (card.TryReadBlock(number, key, block.Bytes) == Refusal::None) {
            show(number, block);
        } else {
            isAll = false;
            context.Out.Problem(Format("block %d: not read: ", number) + MeaningOf(card.LastRefusal()));
        }
    }
    return isAll ? Done : Failed;
}

} // namespace

void AddRead(CommandLine& commands)
{
    auto [command, options] = commands.Add("read", "Shows blocks, in hexadecimal and as characters",
                                           "acg read 4-6 --key FFFFFFFFFFFF", Read);
    command.Argument("BLOCK", options.Blocks, "A block, or the first and the last one: BLOCK-BLOCK");
    AddLoginOptions(command, options.Key);
    AddFromOption(command, options.From, {"--key", "--key-file", "--as-b"});
}

} // namespace acg::tool
