// acg watch: a line for each card that is placed.
#include "tool/CardWait.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WholeCard.h"

#include <ctime>

namespace acg::tool
{

namespace
{

struct Options {
    KeyOptions Key;
    std::string Count; ///< --count
};

/// What is known of a card when it leaves.
struct PlacedCard {
    std::string SerialNumber;
    std::optional<CardSize> Size;       ///< none also if no key shows it
    std::optional<std::string> Sector0; ///< which key opens it: "A", "B", or empty
    bool HasLeft = false;               ///< before all of this was known
};

/// Of the first key.
std::string OpeningOfSector0(CardSession& card, const Key& key)
{
    for (const uint8_t type : {KeyTypeA, KeyTypeB}) {
        if (card.TryLogIn(0, {key, type}) == Refusal::None) {
            return type == KeyTypeA ? "A" : "B";
        }
    }
    return {};
}

PlacedCard Look(CardSession& card, const KeyRing& keys)
{
    PlacedCard placed{.SerialNumber = card.SerialNumber()};
    try {
        placed.Sector0 = OpeningOfSector0(card, keys.front().Bytes);
        placed.Size = FindSize(card, keys, LastSector1K + 1); // more sectors would take too long
    } catch (const AnotherCard&) {
        placed.HasLeft = true;
    } catch (const CardFailure& failure) {
        if (!MeansNoCard(failure.Record)) {
            throw;
        }
        placed.HasLeft = true;
    }
    return placed;
}

std::string TimeText(const char* pattern, const std::tm& time)
{
    char text[32] = {};
    return {text, std::strftime(text, sizeof text, pattern, &time)};
}

void Show(const PlacedCard& placed, Output& out)
{
    const std::time_t now = std::time(nullptr);
    out.Json["time"] = TimeText("%Y-%m-%dT%H:%M:%SZ", *std::gmtime(&now));
    const std::string local = TimeText("%Y-%m-%d %H:%M:%S", *std::localtime(&now));
    std::string line = local + "  " + placed.SerialNumber;
    out.Json["serial"] = placed.SerialNumber;
    for (const char* const member : {"size", "sizeReason", "sector0"}) {
        out.Json[member] = JsonObject(); // unless it is known
    }
    if (placed.Size) {
        line += Format("  %s", placed.Size->Name());
        out.Json["size"] = placed.Size->JsonName();
        out.Json["sizeReason"] = placed.Size->Reason;
    }
    if (placed.Sector0) {
        out.Json["sector0"] = *placed.Sector0;
        line += placed.Sector0->empty() ? "  the key doesn't open sector 0"
                                        : "  the key opens sector 0 as key " + *placed.Sector0;
    }
    out.Print(line + (placed.HasLeft ? "  left too early" : ""));
}

int Watch(const Options& options, Context& context)
{
    const int32_t count =
        options.Count.empty() ? 0 : ParseNumber(options.Count, 1, INT32_MAX, "--count is a number from 1 on");
    const KeyRing keys = ReadKeyRing(options.Key);
    CardSession card(context.Reader, CardWait::None);
    for (int32_t seen = 0; count == 0 || seen < count; ++seen) {
        if (seen > 0) {
            WaitUntilGone(card);
        }
        WaitForCard(card);
        Show(Look(card, keys), context.Out);
        if (!context.Out.Finish()) {
            return Failed;
        }
    }
    return Done;
}

} // namespace

void AddWatch(CommandLine& commands)
{
    auto [command, options] = commands.Add("watch", "Shows each card that is placed, until Ctrl-C or --count",
                                           "acg watch --key-file keys.txt --count 10", Watch);
    AddKeyRingOptions(command, options.Key);
    command.Option("--count", "N", options.Count, "Exit after N cards; default: never");
}

} // namespace acg::tool
