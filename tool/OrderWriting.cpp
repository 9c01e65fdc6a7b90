#include "tool/OrderWriting.h"

#include "acg/cards/BlockAddress.h"
#include "acg/cards/TrailerLayout.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/Text.h"
#include "tool/WritePlan.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

/// The sectors of which something is written.
std::vector<int32_t> SectorsOf(const Dump& wanted)
{
    std::vector<int32_t> sectors;
    for (size_t at = 0; at < wanted.size(); ++at) {
        const int32_t sector = SectorOf(static_cast<int32_t>(at));
        if (wanted[at].Known != 0 && (sectors.empty() || sectors.back() != sector)) {
            sectors.push_back(sector);
        }
    }
    return sectors;
}

void AppendNew(const KeyRing& more, KeyRing& keys)
{
    for (const NamedKey& key : more) {
        if (std::ranges::find(keys, key.Bytes, &NamedKey::Bytes) == keys.end()) {
            keys.push_back(key);
        }
    }
}

/// What may open a sector, the likeliest first.
KeyRing KeysFor(const CardOrder& order, int32_t sector, CardState state, const KeyRing& given)
{
    KeyRing keys;
    const DumpedBlock& trailer = order.Wanted[static_cast<size_t>(TrailerBlock(sector))];
    for (const std::optional<Key>& key : {KeyAIn(trailer), KeyBIn(trailer)}) {
        if (key && state != CardState::New) {
            AppendNew({{*key, "the new key"}}, keys);
        }
    }
    if (state != CardState::Written || trailer.Known == 0) {
        const auto ofRow = order.Keys.find(sector);
        AppendNew(ofRow != order.Keys.end() ? ofRow->second : given, keys);
    }
    return keys;
}

/// Byte 9 stays the card's if the order leaves it open.
void Complete(DumpedBlock& trailer, const DumpedBlock& onCard)
{
    constexpr uint16_t Open = BitsOf(UserByteAt, 1);
    if ((trailer.Known | Open) == WholeBlock && (onCard.Known & ~trailer.Known & Open) != 0) {
        trailer.Bytes[UserByteAt] = onCard.Bytes[UserByteAt];
        trailer.Known = WholeBlock;
    }
}

/// Adds what differs in these sectors of the card from the wanted blocks, and completes those.
void Look(CardSession& card, const CardOrder& order, CardState state, const KeyRing& given, Dump& wanted,
          WritePlan& plan)
{
    const ProgressBar bar(static_cast<int>(wanted.size()));
    for (const int32_t sector : SectorsOf(wanted)) {
        const KeyRing keys = KeysFor(order, sector, state, given);
        const SectorContents contents = ReadSector(card, sector, keys, bar);
        Complete(wanted[static_cast<size_t>(TrailerBlock(sector))], contents.Blocks.back());
        plan.Add(sector, contents, keys);
    }
    if (plan.LeavesOut()) {
        std::string text;
        for (const std::string& line : plan.LeftOut()) {
            text += (text.empty() ? "" : "\n  ") + line;
        }
        if (SectorOf(static_cast<int32_t>(wanted.size()) - 1) > LastSector1K) {
            text += Format("\n  a 1K card has sectors 0 to %d only", LastSector1K);
        }
        throw OtherFailure{text};
    }
}

} // namespace

void WriteOrder(CardSession& card, const CardOrder& order, CardState state, const KeyRing& given,
                WriteReport& report)
{
    Dump wanted = order.Wanted;
    WritePlan plan(wanted, Asked::Known);
    Look(card, order, state, given, wanted, plan);
    report.Clear();
    const std::vector<WriteStep> steps = plan.Steps();
    for (const WriteStep& step : steps) {
        report.Add(step.Name(), NextOfOrder);
    }
    card.Select();
    for (const WriteStep& step : steps) {
        WriteBlocks(card, step, wanted, report);
    }
    // Under the new rights, and with the new keys.
    Dump ofNewTrailers(wanted.size());
    for (const WriteStep& step : steps) {
        const int32_t last = TrailerBlock(step.Sector);
        for (int32_t number = TrailerBlock(step.Sector - 1) + 1; step.IsOfTrailer() && number <= last;
             ++number) {
            ofNewTrailers[static_cast<size_t>(number)] = wanted[static_cast<size_t>(number)];
        }
    }
    WritePlan remaining(ofNewTrailers, Asked::Known);
    Look(card, order, CardState::Written, given, ofNewTrailers, remaining);
    if (!remaining.Steps().empty()) {
        throw OtherFailure{remaining.Steps().front().Name() +
                           ": it doesn't read back as written with the new keys"};
    }
    card.Select();
}

} // namespace acg::tool
