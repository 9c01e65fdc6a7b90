// acg trailer: what the keys of a sector may do.
#include "acg/platform/HexText.h"
#include "tool/AccessWords.h"
#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

struct Options {
    std::string Sector;
    KeyOptions Key;
    std::string From; ///< --from
};

Trailer TakeTrailer(const Options& options, int32_t sector, Context& context)
{
    if (!options.From.empty()) {
        return TrailerIn(ReadDump(options.From), sector);
    }
    const LoginKey key = ReadLoginKey(options.Key);
    CardSession card(context.Parameters);
    return ReadTrailer(card, sector, key);
}

int ShowTrailer(const Options& options, Context& context)
{
    const int32_t sector = ParseSector(options.Sector);
    const Trailer trailer = TakeTrailer(options, sector, context);
    const ConditionBytes& bytes = trailer.Conditions;
    const AccessReport access{sector, bytes, trailer.UserByte, {}};
    context.Out.Json = ToJson(access);
    context.Out.Print(Format("Sector %d: access bits %s, byte 9 is %d\nLevels %s\n\n%s", sector,
                             ToHex(bytes).c_str(), trailer.UserByte, FormatLevels(bytes).c_str(),
                             AccessTable(access).c_str()));
    return Done;
}

} // namespace

void AddTrailer(CommandLine& commands)
{
    auto [command, options] = commands.Add("trailer", "Shows what each key of a sector may do",
                                           "acg trailer 1 --key FFFFFFFFFFFF", ShowTrailer);
    AddSectorArgument(command, options.Sector);
    AddLoginOptions(command, options.Key);
    AddFromOption(command, options.From, {"--key", "--key-file", "--as-b"});
}

} // namespace acg::tool
