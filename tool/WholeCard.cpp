#include "tool/WholeCard.h"

#include "acg/cards/BlockAddress.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/SectorAccess.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

class SectorReading
{
public:
    SectorReading(CardSession& card, int32_t sector, const KeyRing& keys, const ProgressBar& bar)
        : m_card(card), m_keys(keys), m_bar(bar), m_sector(sector), m_first(TrailerBlock(sector - 1) + 1)
    {
        m_result.Blocks.resize(static_cast<size_t>(TrailerBlock(sector)) - static_cast<size_t>(m_first) + 1);
        m_result.Refusals.resize(m_result.Blocks.size());
    }

    [[nodiscard]] SectorContents Read();

private:
    std::optional<size_t> FindKey(uint8_t type);
    void ReadUnread(const LoginKey& key);

    CardSession& m_card;
    const KeyRing& m_keys;
    const ProgressBar& m_bar;
    int32_t m_sector;
    int32_t m_first; ///< its first block
    SectorContents m_result;
};

/// The first key that opens the sector; it stays logged in.
std::optional<size_t> SectorReading::FindKey(uint8_t type)
{
    for (size_t at = 0; at < m_keys.size(); ++at) {
        if (m_card.TryLogIn(m_sector, {m_keys[at].Bytes, type}) == Refusal::None) {
            return at;
        }
    }
    return std::nullopt;
}

/// Reads those blocks that haven't been read, first the trailer. It says which of the others the key may
/// read.
void SectorReading::ReadUnread(const LoginKey& key)
{
    Dump& blocks = m_result.Blocks;
    const auto read = [&](size_t at) {
        DumpedBlock& block = blocks[at];
        const int32_t number = m_first + static_cast<int32_t>(at);
        if (m_card.TryReadBlock(number, key, block.Bytes) == Refusal::None) {
            block.Known = WholeBlock;
            return;
        }
        m_result.Refusals[at] = MeaningOf(m_card.LastRefusal());
    };
    const size_t last = blocks.size() - 1;
    if (blocks[last].Known == 0) {
        read(last);
    }
    const Trailer trailer(blocks[last].Bytes);
    const bool isTold = blocks[last].Known != 0 && InvertedCopiesAgree(trailer.Conditions);
    const SectorRights rights = RightsOfBits(trailer.Conditions);
    for (size_t at = 0; at < last; ++at) {
        const unsigned slot = SlotOf(m_first + static_cast<int32_t>(at));
        if (blocks[at].Known == 0 && (!isTold || Has(rights[slot][Right::Read], key.AsKeySet()))) {
            read(at);
            m_bar.Show(m_first + static_cast<int32_t>(at) + 1);
        }
    }
}

/// Puts the key that opened the sector in place of what the trailer shows of it.
void PutKey(const Key* key, size_t at, uint16_t bytes, DumpedBlock& trailer)
{
    trailer.Known = static_cast<uint16_t>(trailer.Known & ~bytes);
    if (key != nullptr) {
        std::ranges::copy(*key, trailer.Bytes.begin() + static_cast<std::ptrdiff_t>(at));
        trailer.Known = static_cast<uint16_t>(trailer.Known | bytes);
    }
}

SectorContents SectorReading::Read()
{
    DumpedBlock& trailer = m_result.Blocks.back();
    Opening& opening = m_result.Keys;
    const auto keyAt = [&](const std::optional<size_t>& at) { return at ? &m_keys[*at].Bytes : nullptr; };

    opening.A = FindKey(KeyTypeA);
    if (opening.A) {
        ReadUnread({*keyAt(opening.A), KeyTypeA});
        opening.ShowsB =
            trailer.Known != 0 && KeysUsedBy(TrailerRightsIn(Trailer(trailer.Bytes).Conditions)) == KeyAAlone;
    }
    if (!opening.ShowsB) {
        opening.B = FindKey(KeyTypeB);
        if (opening.B) {
            ReadUnread({*keyAt(opening.B), KeyTypeB});
        }
    }
    m_result.IsTrailerRead = trailer.Known != 0;
    PutKey(keyAt(opening.A), 0, KeyABits, trailer);
    if (!opening.ShowsB) {
        PutKey(keyAt(opening.B), KeyBAt, KeyBBits, trailer);
    }
    m_bar.Show(TrailerBlock(m_sector) + 1);
    return std::move(m_result);
}

class Reading
{
public:
    Reading(CardSession& card, const KeyRing& keys, const CardSize& size, Output& out)
        : m_card(card), m_keys(keys), m_out(out), m_bar(TrailerBlock(size.LastSector) + 1)
    {
        m_result.SerialNumber = card.SerialNumber();
        m_result.Size = size;
    }

    /// Reads the sector that follows those in the result.
    void ReadSector();
    /// Changes the size to the card's own.
    void FindSize();
    [[nodiscard]] const CardSize& Size() const { return m_result.Size; }
    [[nodiscard]] WholeCard Take() { return std::move(m_result); }

private:
    void NoteWhatIsMissing(int32_t sector, const SectorContents& contents);

    CardSession& m_card;
    const KeyRing& m_keys;
    Output& m_out;
    WholeCard m_result;
    ProgressBar m_bar;
};

/// The key's place in the list; it is added if it isn't there.
size_t PlaceOf(const Key& key, KeyRing& keys)
{
    const auto found = std::ranges::find(keys, key, &NamedKey::Bytes);
    const auto place = static_cast<size_t>(found - keys.begin());
    if (found == keys.end()) {
        keys.push_back({key, "a key of the dump"});
    }
    return place;
}

void Reading::ReadSector()
{
    const auto sector = static_cast<int32_t>(m_result.Openings.size());
    const SectorContents contents = tool::ReadSector(m_card, sector, m_keys, m_bar);
    NoteWhatIsMissing(sector, contents);
    m_result.Blocks.insert(m_result.Blocks.end(), contents.Blocks.begin(), contents.Blocks.end());
    m_result.Openings.push_back(contents.Keys);
}

void Reading::FindSize()
{
    try {
        m_result.Size = tool::FindSize(m_card, m_keys, LastSector)
                            .value_or(CardSize{LastSector1K,
                                               Format("no key opens a sector from %d on", LastSector1K + 1)});
    } catch (const CardFailure&) {
        m_bar.Erase();
        m_out.Problem("whether the card has a sector 16 isn't known; --card 1k doesn't ask");
        throw;
    }
    m_bar.SetSteps(TrailerBlock(m_result.Size.LastSector) + 1);
}

void Reading::NoteWhatIsMissing(int32_t sector, const SectorContents& contents)
{
    std::vector<std::string>& missing = m_result.Missing;
    const Dump& blocks = contents.Blocks;
    const int32_t last = TrailerBlock(sector);
    const int32_t first = TrailerBlock(sector - 1) + 1;
    if (!contents.Keys.A && !contents.Keys.B) {
        missing.push_back(
            Format("blocks %d to %d, sector %d: not read, as no key opens it", first, last, sector));
        return;
    }
    for (size_t at = 0; at + 1 < blocks.size(); ++at) {
        if (blocks[at].Known == 0) {
            missing.push_back(Format("block %d: not read: ", first + static_cast<int32_t>(at)) +
                              (contents.Refusals[at].empty()
                                   ? "its access bits allow it to no key that opens the sector"
                                   : contents.Refusals[at]));
        }
    }
    if (!contents.IsTrailerRead) {
        missing.push_back(Format("block %d, the trailer of sector %d: not read", last, sector));
    }
    for (const auto& [name, bytes] : {std::pair{'A', KeyABits}, std::pair{'B', KeyBBits}}) {
        if ((blocks.back().Known & bytes) == 0) {
            missing.push_back(
                Format("block %d, the trailer of sector %d: key %c isn't known", last, sector, name));
        }
    }
}

} // namespace

void AddCardOption(CommandOptions& command, std::string& size)
{
    command.Option("--card", "1k|4k", size,
                   "The card's size; default: 4K if a key opens a sector from 16 on, otherwise 1K");
}

std::optional<CardSize> ParseCardSize(const std::string& size)
{
    if (size.empty()) {
        return std::nullopt;
    }
    if (size != "1k" && size != "4k") {
        throw UsageError{"--card is 1k or 4k"};
    }
    return CardSize{size == "1k" ? LastSector1K : LastSector, "--card was given"};
}

std::optional<CardSize> FindSize(CardSession& card, const KeyRing& keys, int32_t lastTried)
{
    bool isAbsent = true; // by the letter that the simulated reader has for it
    for (int32_t sector = LastSector1K + 1; sector <= lastTried; ++sector) {
        for (const NamedKey& key : keys) {
            for (const uint8_t type : {KeyTypeA, KeyTypeB}) {
                if (card.TryLogIn(sector, {key.Bytes, type}) == Refusal::None) {
                    return CardSize{LastSector, Format("a key opens sector %d", sector)};
                }
                isAbsent = isAbsent && card.LastRefusal().RdrRetCode == L"R";
            }
        }
        if (isAbsent) {
            return CardSize{LastSector1K, Format("the reader answers R to a login on sector %d", sector)};
        }
    }
    return std::nullopt;
}

SectorContents ReadSector(CardSession& card, int32_t sector, const KeyRing& keys, const ProgressBar& bar)
{
    return SectorReading(card, sector, keys, bar).Read();
}

WholeCard ReadWholeCard(CardSession& card, const KeyRing& keys, const std::optional<CardSize>& size,
                        Output& out)
{
    Reading reading(card, keys, size.value_or(CardSize()), out);
    for (int32_t sector = 0; sector <= reading.Size().LastSector; ++sector) {
        try {
            reading.ReadSector();
            card.Select();
        } catch (const AnotherCard& other) {
            const std::string known =
                sector == 0 ? "no block is certain to be"
                            : Format("only blocks 0 to %d are certain to be", TrailerBlock(sector - 1));
            throw AnotherCard{{other.Text + "; " + known + " from the first"}, other.Now};
        }
        if (sector == LastSector1K && !size) {
            reading.FindSize();
        }
    }
    return reading.Take();
}

void SayWhatIsMissing(const WholeCard& card, Output& out)
{
    for (const std::string& what : card.Missing) {
        out.Problem(what);
    }
}

WholeCard CardFrom(Dump blocks, KeyRing& keys)
{
    const auto count = static_cast<int32_t>(blocks.size());
    const int32_t lastSector = SectorOf(count - 1);
    WholeCard card{.Size = {lastSector, Format("the dump has %d blocks", count)},
                   .Blocks = std::move(blocks)};
    card.Blocks.resize(static_cast<size_t>(TrailerBlock(lastSector)) + 1);
    card.SerialNumber = SerialNumberIn(card.Blocks);
    for (int32_t sector = 0; sector <= lastSector; ++sector) {
        const DumpedBlock& block = card.Blocks[static_cast<size_t>(TrailerBlock(sector))];
        const auto knows = [&](uint16_t bytes) { return (block.Known & bytes) == bytes; };
        const Trailer trailer(block.Bytes);
        Opening& opening = card.Openings.emplace_back();
        if (knows(AccessBytes) && !InvertedCopiesAgree(trailer.Conditions)) {
            continue;
        }
        opening.ShowsB = knows(AccessBytes) && KeysUsedBy(TrailerRightsIn(trailer.Conditions)) == KeyAAlone;
        if (knows(KeyABits)) {
            opening.A = PlaceOf(trailer.KeyA, keys);
        }
        if (knows(KeyBBits) && !opening.ShowsB) {
            opening.B = PlaceOf(trailer.KeyB, keys);
        }
    }
    return card;
}

WholeCard TakeCard(const std::string& from, const std::optional<CardSize>& size, KeyRing& keys,
                   Context& context)
{
    if (!from.empty()) {
        return CardFrom(ReadDump(from), keys);
    }
    CardSession session(context.Reader);
    return ReadWholeCard(session, keys, size, context.Out);
}

} // namespace acg::tool
