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

int Preview(const LevelOptions& options, Context& context)
{
    const SectorLevels levels = ParseLevels(options);
    const ConditionBytes bytes = EncodeOrRefuse(levels);
    const AccessReport access{{}, bytes, {}, Deviations(levels, bytes, /*sector=*/{})};
    context.Out.Json = ToJson(access);
    context.Out.Print(Format("Access bits %s\nThese levels read back as %s\n\n%s", ToHex(bytes).c_str(),
                             FormatLevels(bytes).c_str(), AccessTable(access).c_str()));
    return Done;
}

} // namespace

void AddPreview(CommandLine& commands)
{
    auto [command, options] = commands.Add("preview", "Shows what levels let each key do, without a card",
                                           "acg preview --levels 13,13,13,12 --keys 2 --value 0", Preview);
    AddLevelOptions(command, options, "1 for key A alone, 2 for both keys", Need::Required,
                    "Which of the data blocks 0, 1 and 2 are value blocks, as in 0,2");
}

} // namespace acg::tool
