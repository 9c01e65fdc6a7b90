// acg read: blocks in hexadecimal and as characters.
#include "tool/Blocks.h"
#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

struct Options {
    std::string Blocks;
    KeyOptions Key;
};

int Read(const Options& options, Context& context)
{
    const auto [first, last] = ParseRange(options.Blocks, ParseBlockNumber);
    const LoginKey key = ReadLoginKey(options.Key);
    JsonObject& blocks = context.Out.Json["blocks"] = JsonObject::array();
    CardSession card(context.Parameters);
    for (int32_t number = first; number <= last; ++number) {
        const Block block = card.ReadBlock(number, key);
        const uint16_t known = IsTrailer(number) ? AllButKeys : WholeBlock;
        context.Out.Print(HexDump(number, block, known));
        blocks.push_back(
            {{"block", number}, {"hex", Digits(block, known, "")}, {"characters", Characters(block, known)}});
    }
    return Done;
}

} // namespace

void AddRead(CommandLine& commands)
{
    auto [command, options] = commands.Add("read", "Shows blocks in hexadecimal and as characters",
                                           "acg read 4-6 --key FFFFFFFFFFFF", Read);
    command.Argument("BLOCK", options.Blocks, "A block, or the first and the last one: BLOCK-BLOCK");
    AddLoginOptions(command, options.Key);
}

} // namespace acg::tool
