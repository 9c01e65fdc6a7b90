// acg trailer: what the keys of a sector may do.
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
};

int ShowTrailer(const Options& options, Context& context)
{
    const int32_t sector = ParseSector(options.Sector);
    const LoginKey key = ReadLoginKey(options.Key);
    CardSession card(context.Parameters);
    const Trailer trailer = ReadTrailer(card, sector, key);
    const AccessReport access{sector, trailer.Conditions, trailer.UserByte, {}};
    context.Out.Json = ToJson(access);
    context.Out.Print(AccessHead(Format("Sector %d", sector), access) + "\n\n" + AccessTable(access));
    return Done;
}

} // namespace

void AddTrailer(CommandLine& commands)
{
    auto [command, options] = commands.Add("trailer", "Shows what each key of a sector may do",
                                           "acg trailer 1 --key FFFFFFFFFFFF", ShowTrailer);
    AddSectorArgument(command, options.Sector);
    AddLoginOptions(command, options.Key);
}

} // namespace acg::tool
