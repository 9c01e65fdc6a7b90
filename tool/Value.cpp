// acg value: a value block.
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
    std::string Number;
    KeyOptions Key;
};

void Show(const ValueBlock& block, Output& out)
{
    const std::string copies =
        block.HasCopies() ? "agree" : Format("disagree: inverted %d, again %d", block.Inverted, block.Again);
    out.Print(Format("Value    %d\nCopies   %s\nAddress  %s", block.Value, copies.c_str(),
                     block.Address ? std::to_string(*block.Address).c_str() : "its four bytes disagree"));
    JsonObject& json = out.Json;
    json["value"] = block.Value;
    json["isValueBlock"] = block.IsValid();
    json["address"] = block.Address ? JsonObject(*block.Address) : JsonObject();
}

int Value(const Options& options, Context& context)
{
    const int32_t number = ParseDataBlock(options.Block);
    std::optional<int32_t> wanted;
    if (!options.Number.empty()) {
        wanted = ParseNumber(options.Number, INT32_MIN, INT32_MAX,
                             "NUMBER is a whole number from -2^31 to 2^31 - 1");
    }
    const LoginKey key = ReadLoginKey(options.Key);
    WriteReport report(context.Out);
    if (wanted) {
        report.Add(Format("block %d", number), ReadCommand(number, key));
    }
    CardSession card(context.Reader);
    ValueBlock block;
    const auto read = [&] {
        block = ValueBlock(card.ReadBlock(number, key));
        return block.IsValid() && block.Value == wanted.value_or(block.Value);
    };
    bool isAsWanted = false;
    if (wanted) {
        report.BeginCard(card);
        Encoder& encoder = card.Class();
        report.NoteSending(card, FailureOf(encoder, encoder.WriteValueBloc(number, DigitsOf(key.Bytes).Text,
                                                                           key.Type, *wanted)));
        isAsWanted = report.ReadBack(card, read);
    } else {
        isAsWanted = read();
    }
    context.Out.Json["block"] = number;
    Show(block, context.Out);
    if (!isAsWanted) {
        throw OtherFailure{Format(
            wanted ? "block %d doesn't read back as written" : "block %d isn't a value block", number)};
    }
    return Done;
}

} // namespace

void AddValue(CommandLine& commands)
{
    auto [command, options] = commands.Add("value", "Checks a value block, or writes one and checks it",
                                           "acg value 5 1000 --key FFFFFFFFFFFF", Value);
    command.Argument("BLOCK", options.Block,
                     "The block, 1 to 62, on a 4K card to 254; not a sector's last one");
    command.Argument("NUMBER", options.Number,
                     "The value to write, from -2147483648 to 2147483647. The reader's interface can neither "
                     "increment nor decrement: to "
                     "change a value, read it and write the new one, with a key that may write the block",
                     Need::Optional);
    AddLoginOptions(command, options.Key);
}

} // namespace acg::tool
