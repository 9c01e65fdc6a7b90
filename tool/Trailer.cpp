// acg trailer: what the keys of a sector may do.
#include "acg/cards/BlockAddress.h"
#include "acg/platform/HexText.h"
#include "tool/AccessWords.h"
#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

#include <functional>

namespace acg::tool
{

namespace
{

struct Options {
    std::string Sectors;
    KeyOptions Key;
    std::string From; ///< --from
};

int ShowOne(int32_t sector, const Trailer& trailer, Context& context)
{
    const AccessReport access{sector, trailer.Conditions, trailer.UserByte, {}};
    context.Out.Json = ToJson(access);
    context.Out.Print(AccessHead(Format("Sector %d", sector), access) + "\n\n" + AccessTable(access));
    return Done;
}

/// Why the trailer can't be read, if others still can; nothing if access has it.
std::string Read(CardSession& card, int32_t sector, const LoginKey& key, AccessReport& access)
{
    Block block{};
    switch (card.TryReadBlock(TrailerBlock(sector), key, block)) {
    case Refusal::WrongKey:
        return Format("%s doesn't open it, or the card has no such sector", NameOf(key.AsKeySet()));
    case Refusal::NotGranted:
        return Format("opened, but %s may not read the trailer", NameOf(key.AsKeySet()));
    case Refusal::None:
        break;
    }
    const Trailer trailer(block);
    access = {sector, trailer.Conditions, trailer.UserByte, {}};
    return InvertedCopiesAgree(trailer.Conditions) ? ""
                                                   : "access bits " + ToHex(trailer.Conditions) +
                                                         " contradict their inverted copies: don't write it";
}

std::string Read(const Dump& dump, int32_t sector, AccessReport& access)
{
    try {
        const Trailer trailer = TrailerIn(dump, sector);
        access = {sector, trailer.Conditions, trailer.UserByte, {}};
        return {};
    } catch (const OtherFailure& failure) {
        return failure.Text;
    }
}

/// A line a sector; one that can't be read doesn't hide the others. read: returns why it can't be, or
/// nothing.
int ShowAll(int32_t first, int32_t last, const std::function<std::string(int32_t, AccessReport&)>& read,
            Context& context)
{
    Output& out = context.Out;
    JsonObject& sectors = out.Json["sectors"] = JsonObject::array();
    out.Print("Sector, access bits, byte 9, levels. FOR GOOD: they can never be changed again.");
    int32_t missing = 0;
    for (int32_t sector = first; sector <= last; ++sector) {
        AccessReport access{};
        const std::string problem = read(sector, access);
        if (problem.empty()) {
            const bool isFixed = AreConditionsFixed(TrailerRightsIn(access.Bytes));
            out.Print(Format("%2d  %s  %3d  %s%s", sector, ToHex(access.Bytes).c_str(), *access.UserByte,
                             FormatLevels(access.Bytes).c_str(), isFixed ? "  FOR GOOD" : ""));
            sectors.push_back(ToJson(access));
        } else {
            ++missing;
            out.Print(Format("%2d  %s", sector, problem.c_str()));
            sectors.push_back({{"sector", sector}, {"problem", problem}});
        }
    }
    if (missing != 0) {
        throw OtherFailure{Format("%d of %d trailers couldn't be read", missing, last - first + 1)};
    }
    return Done;
}

int ShowTrailers(const Options& options, Context& context)
{
    const auto [first, last] = ParseRange(options.Sectors, ParseSector);
    if (!options.From.empty()) {
        const Dump dump = ReadDump(options.From);
        return first == last
                   ? ShowOne(first, TrailerIn(dump, first), context)
                   : ShowAll(
                         first, last,
                         [&](int32_t sector, AccessReport& access) { return Read(dump, sector, access); },
                         context);
    }
    const LoginKey key = ReadLoginKey(options.Key);
    CardSession card(context.Reader);
    return first == last
               ? ShowOne(first, ReadTrailer(card, first, key), context)
               : ShowAll(
                     first, last,
                     [&](int32_t sector, AccessReport& access) { return Read(card, sector, key, access); },
                     context);
}

} // namespace

void AddTrailer(CommandLine& commands)
{
    auto [command, options] = commands.Add("trailer", "Shows what each key of a sector may do",
                                           "acg trailer 1 --key FFFFFFFFFFFF", ShowTrailers);
    AddSectorArgument(command, options.Sectors);
    AddLoginOptions(command, options.Key);
    AddFromOption(command, options.From, {"--key", "--key-file", "--as-b"});
}

} // namespace acg::tool
