// acg write: a data block.
#include "acg/platform/HexText.h"
#include "tool/Blocks.h"
#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WriteReport.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

struct Options {
    std::string Block;
    std::string Contents; ///< HEX
    std::string Text;     ///< --text
    std::string File;     ///< --from
    KeyOptions Key;
};

/// One of the three is given.
Block ParseContents(const Options& options)
{
    Block contents{};
    std::string bytes;
    if (!options.Text.empty()) {
        static_cast<void>(ToWide(options.Text)); // throws unless it is UTF-8
        bytes = options.Text;
        if (bytes.size() > contents.size()) {
            throw UsageError{
                Format("--text has %u bytes in UTF-8, and a block has 16, as in --text \"Tarvello says hi\"",
                       static_cast<unsigned>(bytes.size()))};
        }
    } else if (!options.File.empty()) {
        const std::optional<std::string> read = ReadFile(ToPath(options.File), contents.size() + 1);
        if (!read) {
            throw UsageError{"can't read " + options.File};
        }
        bytes = *read;
        if (bytes.size() != contents.size()) {
            throw UsageError{options.File + (bytes.size() < contents.size() ? " is shorter" : " is longer") +
                             " than the 16 bytes of a block"};
        }
    } else {
        const std::optional<Block> block = ParseBlock(options.Contents);
        if (!block) {
            throw UsageError{
                options.Contents.empty()
                    ? "HEX, --text or --from is required, as in acg write 4 --text \"Tarvello says hi\""
                    : "HEX isn't 32 hexadecimal digits"};
        }
        return *block;
    }
    std::ranges::copy(bytes, contents.begin());
    return contents;
}

int Write(const Options& options, Context& context)
{
    const int32_t number = ParseDataBlock(options.Block);
    const Block wanted = ParseContents(options);
    const LoginKey key = ReadLoginKey(options.Key);
    WriteReport report(context.Out);
    report.Add(Format("block %d", number), ReadCommand(number, key));
    CardSession card(context.Reader);
    report.BeginCard(card);
    report.NoteSending(card, card.WriteBlock(number, key, wanted));
    Block written;
    const bool isTaken = report.ReadBack(card, [&] {
        written = card.ReadBlock(number, key);
        return written == wanted;
    });
    context.Out.Print(HexDump(number, written, WholeBlock));
    context.Out.Json["block"] = number;
    context.Out.Json["hex"] = ToHex(written);
    if (!isTaken) {
        throw OtherFailure{Format("block %d doesn't read back as written", number)};
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
    command.Argument("HEX", options.Contents, "The 16 bytes as 32 hexadecimal digits; or --text, or --from",
                     Need::Optional);
    command.Option("--text", "TEXT", options.Text,
                   "The contents as text: up to 16 bytes of UTF-8, padded with zeros", Need::Optional,
                   {"HEX"});
    command.Option("--from", "FILE", options.File, "A binary file of exactly 16 bytes", Need::Optional,
                   {"HEX", "--text"});
    AddLoginOptions(command, options.Key);
}

} // namespace acg::tool
