// acg value: a value block.
#include "acg/Blocks.h"
#include "acg/CommandLine.h"
#include "acg/Commands.h"
#include "acg/Failures.h"
#include "acg/Text.h"

#include <nlohmann/json.hpp>

namespace acg::tool
{

namespace
{

struct Options {
    std::string Block;
    std::string Number;
    KeyOptions Key;
};

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

void Show(const ValueBlock& block, Output& out)
{
    const auto value = static_cast<int32_t>(block.Value);
    const std::string copies =
        block.HasCopies() ? "agree"
                          : Format("disagree: inverted %d, again %d", static_cast<int32_t>(~block.Inverted),
                                   static_cast<int32_t>(block.Again));
    const std::string address =
        block.HasAddress() ? Format("%d", block.Address[0]) : "its four bytes disagree";
    out.Print(Format("Value    %d\nCopies   %s\nAddress  %s", value, copies.c_str(), address.c_str()));
    JsonObject& json = out.Json();
    json["value"] = value;
    json["isValueBlock"] = block.HasCopies() && block.HasAddress();
    json["address"] = block.HasAddress() ? JsonObject(block.Address[0]) : JsonObject();
}

int Value(const Options& given, Context& context)
{
    const int32_t number = ParseDataBlock(given.Block);
    std::optional<int32_t> wanted;
    if (!given.Number.empty()) {
        wanted = ParseNumber(given.Number, INT32_MIN, INT32_MAX,
                             "NUMBER is a whole number from -2^31 to 2^31 - 1");
    }
    const Key key = TheKey(given.Key);
    const auto encoder = OpenReader(context.Parameters);
    if (wanted) {
        Must(*encoder, encoder->WriteValueBloc(number, key.Digits, key.Type, *wanted));
    }
    const ValueBlock block(wanted ? ReadBack(*encoder, number, key, context.Out)
                                  : ReadBlock(*encoder, number, key));
    Show(block, context.Out);
    if (wanted && static_cast<int32_t>(block.Value) != *wanted) {
        throw OtherFailure{Format("block %d reads back as something other than was written", number)};
    }
    if (!block.HasCopies() || !block.HasAddress()) {
        throw OtherFailure{Format("block %d isn't a value block", number)};
    }
    return Done;
}

} // namespace

void AddValue(CommandLine& Commands)
{
    const auto given = std::make_shared<Options>();
    CLI::App& command = Commands.Add("value", "Checks a value block, or writes one and checks it",
                                     "acg value 5 1000 --key FFFFFFFFFFFF",
                                     [given](Context& context) { return Value(*given, context); });
    command.add_option("BLOCK", given->Block, "The block")->required();
    command.add_option("NUMBER", given->Number, "The value to write, from -2147483648 to 2147483647");
    TakesKey(command, given->Key);
}

} // namespace acg::tool
