// acg preview: what levels let each key of a sector do, without a card.
#include "acg/platform/HexText.h"
#include "tool/AccessWords.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

struct Options {
    LevelOptions Levels;
    std::string Bits; ///< --bits
};

/// Throws UsageError unless the text is the access bits, perhaps with byte 9 after them.
AccessReport ParseBits(const std::string& text)
{
    AccessReport access{};
    const std::optional<std::vector<uint8_t>> bytes = FromHex(text);
    const size_t size = access.Bytes.size();
    if (!bytes || (bytes->size() != size && bytes->size() != size + 1)) {
        throw UsageError{
            "--bits is 6 hexadecimal digits, bytes 6 to 8 of a trailer, or 8 with byte 9, as in FF0780"};
    }
    std::copy_n(bytes->begin(), size, access.Bytes.begin());
    access.UserByte = bytes->size() > size ? std::optional(bytes->back()) : std::nullopt;
    if (!InvertedCopiesAgree(access.Bytes)) {
        throw OtherFailure{
            Format("FOR GOOD: access bits %s contradict their inverted copies: a card with them blocks "
                   "the sector, and no key opens it again",
                   ToHex(access.Bytes).c_str())};
    }
    return access;
}

int Preview(const Options& options, Context& context)
{
    if (options.Bits.empty() && (options.Levels.Levels.empty() || options.Levels.KeysToUse.empty())) {
        throw UsageError{
            "--levels and --keys are required, or --bits: acg preview --levels 13,13,13,12 --keys 2, "
            "or acg preview --bits FF0780"};
    }
    AccessReport access{};
    if (!options.Bits.empty()) {
        access = ParseBits(options.Bits);
    } else {
        const SectorLevels levels = ParseLevels(options.Levels);
        access.Bytes = EncodeOrRefuse(levels);
        access.Deviations = Deviations(levels, access.Bytes, access.Sector);
    }
    context.Out.Json = ToJson(access);
    const std::string userByte = access.UserByte ? Format(", byte 9 is %d", *access.UserByte) : "";
    context.Out.Print(Format("Access bits %s%s\n%s %s\n\n%s", ToHex(access.Bytes).c_str(), userByte.c_str(),
                             options.Bits.empty() ? "These levels read back as" : "Levels",
                             FormatLevels(access.Bytes).c_str(), AccessTable(access).c_str()));
    return Done;
}

} // namespace

void AddPreview(CommandLine& commands)
{
    auto [command, options] =
        commands.Add("preview", "Shows what levels or access bits allow each key, without a card",
                     "acg preview --levels 13,13,13,12 --keys 2 --value 0", Preview);
    AddLevelOptions(command, options.Levels, "1 for key A alone, 2 for both keys",
                    "Which of the data blocks 0, 1 and 2 are value blocks, as in 0,2");
    command.Option(
        "--bits", "HEX", options.Bits,
        "Instead of levels: the access bits, bytes 6 to 8 of a trailer, as in FF0780; or bytes 6 to 9",
        Need::Optional, {"--levels", "--keys", "--value"});
}

} // namespace acg::tool
