// acg preview: what levels let each key of a sector do, without a card.
#include "tool/AccessWords.h"
#include "tool/CommandLine.h"
#include "tool/Commands.h"
#include "tool/Failures.h"
#include "tool/Json.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

struct Options {
    LevelOptions Levels;
    std::string ValueBlocks; ///< --value
};

int Preview(const Options& options, Context& context)
{
    Output& out = context.Out;
    SectorLevels levels{ParseLevels(options.Levels.Levels), ParseKeysToUse(options.Levels.KeysToUse)};
    if (!options.ValueBlocks.empty()) {
        ParseValueBlocks(options.ValueBlocks, levels);
    }
    const ConditionBytes bytes = EncodeOrRefuse(levels);
    const std::vector<std::string> deviations = Deviations(levels, bytes, /*Sector=*/{});
    out.Json = ToJson(ShownAccess{{}, bytes, {}, deviations});
    out.Print(Format("Access bits %s\nThese levels read back as %s\n\n%s", AccessBitsText(bytes).c_str(),
                     FormatLevels(bytes).c_str(), AccessTable(bytes, /*Sector=*/{}).c_str()));
    for (const std::string& line : deviations) {
        out.Print(line);
    }
    return Done;
}

} // namespace

void AddPreview(CommandLine& commands)
{
    auto [command, options] = commands.Add("preview", "Shows what levels let each key do, without a card",
                                           "acg preview --levels 13,13,13,12 --keys 2 --value 0", Preview);
    TakesLevels(command, options.Levels, "1 for key A alone, 2 for both keys", Need::Required);
    command.Option("--value", "0,1,2", options.ValueBlocks,
                   "Which of the data blocks 0, 1 and 2 are value blocks, as in 0,2");
}

} // namespace acg::tool
