// acg write: a data block.
#include "acg/platform/HexText.h"
#include "tool/Blocks.h"
#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WriteReport.h"

namespace acg::tool
{

namespace
{

struct Options {
    std::string Block;
    std::string Contents;
    KeyOptions Key;
};

int Write(const Options& options, Context& context)
{
    const int32_t number = ParseDataBlock(options.Block);
    const std::optional<Block> wanted = ParseBlock(options.Contents);
    if (!wanted) {
        throw UsageError{"HEX isn't 32 hexadecimal digits"};
    }
    const LoginKey key = ReadLoginKey(options.Key);
    WriteReport report(context.Out);
    report.Add(Format("block %d", number), ReadCommand(number, key));
    CardSession card(context.Parameters);
    report.BeginCard(card);
    report.NoteSending(card, card.WriteBlock(number, key, *wanted));
    Block written;
    const bool isTaken = report.ReadBack(card, [&] {
        written = card.ReadBlock(number, key);
        return written == *wanted;
    });
    context.Out.Print(HexDump(number, written, WholeBlock));
    context.Out.Json["block"] = number;
    context.Out.Json["hex"] = ToHex(written);
    if (!isTaken) {
        throw OtherFailure{Format("block %d reads back as something other than was written", number)};
    }
    return Done;
}

} // namespace

void AddWrite(CommandLine& commands)
{
    auto [command, options] =
        commands.Add("write", "Writes a data block, reads it back, and compares",
                     "acg write 4 54617276656C6C6F2073617973206869 --key FFFFFFFFFFFF", Write);
    command.Argument("BLOCK", options.Block,
                     "The block, 1 to 62, on a 4K card to 254; not a sector's last one");
    command.Argument("HEX", options.Contents, "Its 16 bytes, in 32 hexadecimal digits");
    AddLoginOptions(command, options.Key);
}

} // namespace acg::tool
