#include "tool/WritePlan.h"

#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/DumpDifference.h"
#include "tool/Failures.h"
#include "tool/SectorAccess.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

std::string NameOfBlocks(const std::vector<int32_t>& blocks)
{
    if (blocks.size() == 1 && IsTrailer(blocks.front())) {
        return Format("the trailer of sector %d", SectorOf(blocks.front()));
    }
    std::string name;
    for (size_t from = 0; from < blocks.size();) {
        size_t to = from + 1;
        while (to < blocks.size() && blocks[to] == blocks[to - 1] + 1) {
            ++to;
        }
        name += (name.empty() ? "" : ", ") + Format("%d", blocks[from]) +
                (to > from + 1 ? Format("-%d", blocks[to - 1]) : "");
        from = to;
    }
    return (blocks.size() == 1 ? "block " : "blocks ") + name;
}

std::optional<Key> KeyIn(const DumpedBlock& trailer, uint16_t bits, const Key& key)
{
    return (trailer.Known & bits) == bits && !key.IsZeros() ? std::optional(key) : std::nullopt;
}

bool AreEqual(const DumpedBlock& one, const DumpedBlock& other, uint16_t bits)
{
    for (size_t at = 0; at < one.Bytes.size(); ++at) {
        if ((bits >> at & 1) != 0 && one.Bytes[at] != other.Bytes[at]) {
            return false;
        }
    }
    return (one.Known & other.Known & bits) == bits;
}

const LoginKey* FindHolder(const std::vector<LoginKey>& logins, KeySet holders)
{
    const auto found =
        std::ranges::find_if(logins, [&](const LoginKey& key) { return Has(holders, key.AsKeySet()); });
    return found != logins.end() ? &*found : nullptr;
}

KeySet WritersOf(int32_t number, const ConditionBytes& conditions)
{
    return RightsOfBits(conditions)[SlotOf(number)][Right::Write];
}

/// holders: none of them is at hand.
std::string OnlyMay(KeySet holders, const char* what)
{
    return holders == KeySet::None
               ? Format("no key may write %s", what)
               : Format("only %s may write %s, and %s isn't known", NameOf(holders), what, NameOf(holders));
}

void AddBlock(std::vector<WriteStep>& steps, int32_t number, const LoginKey& key)
{
    const int32_t sector = SectorOf(number);
    if (steps.empty() || steps.back().Sector != sector || steps.back().Login != key) {
        steps.push_back({sector, key, {}});
    }
    steps.back().Blocks.push_back(number);
}

/// Logs in with each key that the sector then has.
bool HoldsTrailer(CardSession& card, int32_t number, const DumpedBlock& wanted)
{
    const Trailer trailer(wanted.Bytes);
    const std::vector<LoginKey> logins = LoginsOf(trailer);
    return std::ranges::all_of(logins, [&](const LoginKey& key) {
        const Trailer onCard(card.ReadBlock(number, key));
        return onCard.Conditions == trailer.Conditions && onCard.UserByte == trailer.UserByte &&
               (logins.size() > 1 || onCard.KeyB == trailer.KeyB);
    });
}

} // namespace

bool WriteStep::IsOfTrailer() const
{
    return IsTrailer(Blocks.front());
}

std::string WriteStep::Name() const
{
    return NameOfBlocks(Blocks);
}

std::optional<Key> KeyAIn(const DumpedBlock& trailer)
{
    return KeyIn(trailer, KeyABits, Trailer(trailer.Bytes).KeyA);
}

std::optional<Key> KeyBIn(const DumpedBlock& trailer)
{
    return KeyIn(trailer, KeyBBits, Trailer(trailer.Bytes).KeyB);
}

std::vector<LoginKey> LoginsOf(const Trailer& trailer)
{
    std::vector<LoginKey> logins = {{trailer.KeyA, KeyTypeA}};
    if (KeysUsedBy(TrailerRightsIn(trailer.Conditions)) == BothKeys) {
        logins.push_back({trailer.KeyB, KeyTypeB});
    }
    return logins;
}

bool IsContradictory(const DumpedBlock& trailer)
{
    return (trailer.Known & AllButKeys) == AllButKeys &&
           !InvertedCopiesAgree(Trailer(trailer.Bytes).Conditions);
}

void WritePlan::LeaveOut(int32_t number, const std::string& reason)
{
    if (m_leftOut.empty() || m_leftOut.back().Reason != reason || IsTrailer(number) ||
        SectorOf(m_leftOut.back().Blocks.front()) != SectorOf(number)) {
        m_leftOut.push_back({{}, reason});
    }
    m_leftOut.back().Blocks.push_back(number);
}

bool WritePlan::IsAskedFor(int32_t number) const
{
    return number > 0 && (m_asked == Asked::Known  ? m_dump[static_cast<size_t>(number)].Known != 0
                          : m_asked == Asked::Data ? !IsTrailer(number)
                                                   : true);
}

void WritePlan::Add(int32_t sector, const SectorContents& contents, const KeyRing& keys)
{
    const int32_t last = TrailerBlock(sector);
    const int32_t first = last + 1 - static_cast<int32_t>(contents.Blocks.size());
    m_card.resize(static_cast<size_t>(first));
    m_card.insert(m_card.end(), contents.Blocks.begin(), contents.Blocks.end());

    const DumpedBlock& trailer = contents.Blocks.back();
    const char* obstacle = IsContradictory(m_dump[static_cast<size_t>(last)])
                               ? "the access bits that the dump has for the sector contradict themselves"
                           : !contents.Keys.A && !contents.Keys.B ? "no key opens the sector"
                           : !contents.IsTrailerRead  ? "no key that opens the sector reads its access bits"
                           : IsContradictory(trailer) ? "the access bits of the sector contradict themselves"
                                                      : nullptr;
    if (obstacle != nullptr) {
        for (int32_t number = first; number <= last; ++number) {
            if (IsAskedFor(number)) {
                LeaveOut(number, obstacle);
            }
        }
        return;
    }
    std::vector<LoginKey> logins;
    if (contents.Keys.A) {
        logins.push_back({keys[*contents.Keys.A].Bytes, KeyTypeA});
    }
    if (contents.Keys.B) {
        logins.push_back({keys[*contents.Keys.B].Bytes, KeyTypeB});
    }
    const bool replacesTrailer = IsAskedFor(last) && AddTrailer(sector, trailer, logins);
    for (int32_t number = first; number < last; ++number) {
        if (IsAskedFor(number)) {
            AddData(number, contents.Blocks[static_cast<size_t>(number - first)],
                    Trailer(trailer.Bytes).Conditions, logins, replacesTrailer);
        }
    }
}

bool WritePlan::AddTrailer(int32_t sector, const DumpedBlock& onCard, const std::vector<LoginKey>& logins)
{
    const int32_t number = TrailerBlock(sector);
    const DumpedBlock& wanted = m_dump[static_cast<size_t>(number)];
    const Trailer after(wanted.Bytes);
    const bool needsKeyB = LoginsOf(after).size() > 1;
    if (wanted.Known != WholeBlock || !KeyAIn(wanted) || (needsKeyB && !KeyBIn(wanted))) {
        LeaveOut(number, "the dump has only a part of it");
        return false;
    }
    if (onCard == wanted) {
        return false;
    }
    const TrailerRights& rights = TrailerRightsIn(Trailer(onCard.Bytes).Conditions);
    const bool changesKeys = !AreEqual(onCard, wanted, KeyABits | KeyBBits);
    const bool changesConditions = !AreEqual(onCard, wanted, AllButKeys);
    // Whoever may write the keys of a sector is also the one who may write its conditions, if anyone may.
    const LoginKey* const writer =
        FindHolder(logins, changesKeys ? rights.WriteKeys : rights.WriteConditions);
    if (writer == nullptr || (changesConditions && !Has(rights.WriteConditions, writer->AsKeySet()))) {
        LeaveOut(number, writer == nullptr && changesKeys
                             ? OnlyMay(rights.WriteKeys, "its keys")
                             : OnlyMay(rights.WriteConditions, "its access bits"));
        return false;
    }
    AddBlock(m_trailers, number, *writer);
    if (AreConditionsFixed(TrailerRightsIn(after.Conditions)) && !AreConditionsFixed(rights)) {
        m_frozen.push_back(sector);
    }
    return true;
}

void WritePlan::AddData(int32_t number, const DumpedBlock& onCard, const ConditionBytes& conditions,
                        const std::vector<LoginKey>& logins, bool replacesTrailer)
{
    const DumpedBlock& wanted = m_dump[static_cast<size_t>(number)];
    if (wanted.Known != WholeBlock) {
        LeaveOut(number, "not in the dump");
        return;
    }
    if (onCard == wanted) {
        return;
    }
    const KeySet writers = WritersOf(number, conditions);
    if (const LoginKey* const writer = FindHolder(logins, writers)) {
        AddBlock(m_data, number, *writer);
        return;
    }
    if (replacesTrailer) {
        const Trailer after(m_dump[static_cast<size_t>(TrailerBlock(SectorOf(number)))].Bytes);
        const std::vector<LoginKey> later = LoginsOf(after);
        if (const LoginKey* const writer = FindHolder(later, WritersOf(number, after.Conditions))) {
            AddBlock(m_lateData, number, *writer);
            return;
        }
    }
    LeaveOut(number, OnlyMay(writers, "it"));
}

std::vector<WriteStep> WritePlan::Steps() const
{
    std::vector<WriteStep> steps = m_data;
    steps.insert(steps.end(), m_trailers.begin(), m_trailers.end());
    steps.insert(steps.end(), m_lateData.begin(), m_lateData.end());
    return steps;
}

void WritePlan::Show(Output& out) const
{
    out.Json["blocks"] = JsonObject::array();
    const std::vector<WriteStep> steps = Steps();
    if (!steps.empty()) {
        out.Print("< the card as it is\n> the dump");
    }
    for (const WriteStep& step : steps) {
        for (const int32_t number : step.Blocks) {
            const auto at = static_cast<size_t>(number);
            ShowDifference(number, m_card[at], m_dump[at], out);
        }
    }
    for (const WriteStep& step : m_lateData) {
        out.Print(step.Name() + ": written last, as only the new trailer allows it");
    }
    for (const int32_t sector : m_frozen) {
        out.Print(
            Format("FOR GOOD: the rights of the keys of sector %d can never be changed again.", sector));
    }
    for (const std::string& line : LeftOut()) {
        out.Problem(line);
    }
}

std::vector<std::string> WritePlan::LeftOut() const
{
    std::vector<std::string> lines;
    for (const auto& [blocks, reason] : m_leftOut) {
        lines.push_back(NameOfBlocks(blocks) + ": not written: " + reason);
    }
    return lines;
}

void WriteBlocks(CardSession& card, const WriteStep& step, const Dump& wanted, WriteReport& report)
{
    const auto at = [&](int32_t number) -> const DumpedBlock& { return wanted[static_cast<size_t>(number)]; };
    for (const int32_t number : step.Blocks) {
        report.NoteSending(card, card.WriteBlock(number, step.Login, at(number).Bytes));
    }
    const bool isTaken = report.ReadBack(card, [&] {
        return std::ranges::all_of(step.Blocks, [&](int32_t number) {
            return step.IsOfTrailer() ? HoldsTrailer(card, number, at(number))
                                      : card.ReadBlock(number, step.Login) == at(number).Bytes;
        });
    });
    if (!isTaken) {
        throw OtherFailure{step.Name() + ": it doesn't read back as written"};
    }
}

} // namespace acg::tool
