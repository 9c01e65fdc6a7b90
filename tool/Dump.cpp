// acg dump: the whole card into a file.
#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/CommandLine.h"
#include "tool/DumpFile.h"
#include "tool/Failures.h"
#include "tool/ProgressBar.h"
#include "tool/Text.h"
#include "tool/WriteReport.h"

#include <algorithm>
#include <optional>

namespace acg::tool
{

namespace
{

constexpr int32_t LastSector1K = 15;

struct Options {
    std::string File;
    KeyOptions Key;
    std::string Card;        ///< --card
    bool MayReplace = false; ///< --force
};

/// Which key of the list opens a sector, as the index; nothing if none does.
struct Opening {
    std::optional<size_t> A;
    std::optional<size_t> B;
    bool ShowsB = false; ///< the trailer shows key B

    bool operator==(const Opening&) const = default;
};

class CardReading
{
public:
    CardReading(Encoder& encoder, std::vector<Key> keys, Output& out)
        : m_encoder(encoder), m_keys(std::move(keys)), m_out(out)
    {
    }

    /// Reads the sector that follows those in the dump.
    void ReadSector(int32_t sector, const ProgressBar& bar);

    [[nodiscard]] const Dump& Result() const { return m_dump; }
    [[nodiscard]] const std::vector<Opening>& Openings() const { return m_openings; }
    [[nodiscard]] bool IsComplete() const { return m_isComplete; }

private:
    Refusal Read(int32_t number, const LoginKey& key, DumpedBlock& block);
    std::optional<size_t> FindKey(int32_t trailer, uint8_t type, DumpedBlock& block);
    void ReadDataBlock(const Opening& opening, DumpedBlock& block, const ProgressBar& bar);
    void PutKey(const std::optional<size_t>& key, size_t at, uint16_t bytes, DumpedBlock& trailer);
    void Miss(const ProgressBar& bar, const std::string& what)
    {
        m_isComplete = false;
        bar.Erase();
        m_out.Problem(what);
    }

    Encoder& m_encoder;
    std::vector<Key> m_keys;
    Output& m_out;
    Dump m_dump;
    std::vector<Opening> m_openings;
    bool m_isComplete = true;
};

Refusal CardReading::Read(int32_t number, const LoginKey& key, DumpedBlock& block)
{
    const Refusal refusal = TryReadBlock(m_encoder, number, key, block.Bytes);
    block.Known = refusal == Refusal::None ? WholeBlock : block.Known;
    return refusal;
}

/// The first key that opens the sector. What it reads of the trailer goes to the block.
std::optional<size_t> CardReading::FindKey(int32_t trailer, uint8_t type, DumpedBlock& block)
{
    for (size_t at = 0; at < m_keys.size(); ++at) {
        const Refusal refusal = Read(trailer, {m_keys[at], type}, block);
        if (refusal == Refusal::None || refusal == Refusal::NotGranted) {
            return at;
        }
    }
    return std::nullopt;
}

void CardReading::ReadSector(int32_t sector, const ProgressBar& bar)
{
    const int32_t last = TrailerBlock(sector);
    DumpedBlock trailer;
    Opening opening;
    opening.A = FindKey(last, KeyTypeA, trailer);
    const TrailerRights& rights = TrailerRightsIn(Trailer(trailer.Bytes).Conditions);
    opening.ShowsB = trailer.Known != 0 && KeysUsedBy(rights) == KeyAAlone;
    if (!opening.ShowsB) {
        DumpedBlock asB;
        opening.B = FindKey(last, KeyTypeB, asB);
        trailer = trailer.Known != 0 ? trailer : asB;
    }
    m_openings.push_back(opening);

    const auto first = static_cast<int32_t>(m_dump.size());
    const bool isOpen = opening.A || opening.B;
    if (!isOpen) {
        Miss(bar, Format("blocks %d to %d, sector %d: not read, as no key opens it", first, last, sector));
    }
    while (std::ssize(m_dump) < last) {
        DumpedBlock block;
        if (isOpen) {
            ReadDataBlock(opening, block, bar);
        }
        m_dump.push_back(block);
        bar.Show(static_cast<int>(m_dump.size()));
    }
    if (isOpen && trailer.Known == 0) {
        Miss(bar, Format("block %d, the trailer of sector %d: not read", last, sector));
    }
    PutKey(opening.A, 0, KeyABits, trailer);
    if (!opening.ShowsB) {
        PutKey(opening.B, KeyBAt, KeyBBits, trailer);
    }
    for (const auto& [name, bytes] : {std::pair{'A', KeyABits}, std::pair{'B', KeyBBits}}) {
        if (isOpen && (trailer.Known & bytes) == 0) {
            Miss(bar, Format("block %d, the trailer of sector %d: key %c isn't known", last, sector, name));
        }
    }
    m_dump.push_back(trailer);
    bar.Show(static_cast<int>(m_dump.size()));
}

/// Reads the block after those that are in the dump.
void CardReading::ReadDataBlock(const Opening& opening, DumpedBlock& block, const ProgressBar& bar)
{
    const auto number = static_cast<int32_t>(m_dump.size());
    Refusal refusal = Refusal::NotGranted;
    if (opening.A) {
        refusal = Read(number, {m_keys[*opening.A], KeyTypeA}, block);
    }
    if (opening.B && refusal != Refusal::None) {
        refusal = Read(number, {m_keys[*opening.B], KeyTypeB}, block);
    }
    if (refusal != Refusal::None) {
        const auto record = m_encoder.LastError();
        const Remedy* const remedy = FindRemedy(*record);
        Miss(bar, Format("block %d: not read: ", number) +
                      (remedy != nullptr ? std::string(remedy->Meaning) : ToUtf8(record->Description)));
    }
}

/// Puts the key that was used in place of what the trailer shows of it.
void CardReading::PutKey(const std::optional<size_t>& key, size_t at, uint16_t bytes, DumpedBlock& trailer)
{
    trailer.Known = static_cast<uint16_t>(trailer.Known & ~bytes);
    if (key) {
        std::ranges::copy(m_keys[*key], trailer.Bytes.begin() + static_cast<std::ptrdiff_t>(at));
        trailer.Known = static_cast<uint16_t>(trailer.Known | bytes);
    }
}

std::vector<Key> KeysOf(const KeyOptions& options)
{
    if (!options.File.empty()) {
        return ReadKeys(options.File);
    }
    return {KeyFromOption(options.Text, "--key", "ACG_KEY").value_or(ParseKey("FFFFFFFFFFFF", {}))};
}

/// What a key of that list is called.
std::string PlaceInList(const std::optional<size_t>& key, const KeyOptions& options)
{
    if (!key) {
        return "unknown";
    }
    return options.File.empty() ? "the key" : Format("key %d of the file", static_cast<int>(*key) + 1);
}

/// The first sector that a card of 1K lacks and one of the keys opens. Throws CardFailure if a reply concerns
/// more than the sector: if the card has left, for example.
std::optional<int32_t> FindSectorOf4K(Encoder& encoder, const std::vector<Key>& keys)
{
    for (int32_t sector = LastSector1K + 1; sector <= LastSector; ++sector) {
        for (const Key& key : keys) {
            for (const uint8_t type : {KeyTypeA, KeyTypeB}) {
                Block trailer;
                if (TryReadBlock(encoder, TrailerBlock(sector), {key, type}, trailer) == Refusal::None) {
                    return sector;
                }
            }
        }
    }
    return std::nullopt;
}

/// A line for each run of sectors with the same keys.
void ShowOpenings(const std::vector<Opening>& openings, const KeyOptions& keys, Output& out)
{
    for (auto from = openings.begin(); from != openings.end();) {
        const auto end =
            std::find_if(from, openings.end(), [&](const Opening& other) { return other != *from; });
        const auto first = static_cast<int>(from - openings.begin());
        const auto last = static_cast<int>(end - openings.begin()) - 1;
        const std::string keyA = PlaceInList(from->A, keys);
        const std::string keyB = from->ShowsB ? "shown by the card" : PlaceInList(from->B, keys);
        out.Print(Format("sectors %2d to %2d  key A %s, key B %s", first, last, keyA.c_str(), keyB.c_str()));
        out.Json["sectors"].push_back({{"first", first}, {"last", last}, {"keyA", keyA}, {"keyB", keyB}});
        from = end;
    }
}

/// Of a trailer, what it shows.
bool IsRead(const DumpedBlock& block, int32_t number)
{
    const uint16_t shown = IsTrailer(number) ? AllButKeys : WholeBlock;
    return (block.Known & shown) == shown;
}

/// After a sector; throws OtherFailure if the card isn't the one with which the dump began.
void RequireCard(Encoder& encoder, const std::wstring& first, int32_t sector)
{
    const std::wstring now = SerialNumberOf(encoder);
    if (now != first) {
        const std::string known = sector == 0
                                      ? "no block is surely"
                                      : Format("only blocks 0 to %d are surely", TrailerBlock(sector - 1));
        throw OtherFailure{
            Format("the dump began with card %s, and %s lies in the field now; %s of the first",
                   ToUtf8(first).c_str(), ToUtf8(now).c_str(), known.c_str())};
    }
}

int DumpCard(const Options& options, Context& context)
{
    Output& out = context.Out;
    const std::string& name = options.File;
    const std::vector<Key> keys = KeysOf(options.Key);
    if (!options.Card.empty() && options.Card != "1k" && options.Card != "4k") {
        throw UsageError{"--card is 1k or 4k"};
    }
    int32_t lastSector = options.Card == "4k" ? LastSector : LastSector1K;
    std::string sizeReason = "--card says so";
    const ExistingFile existing = options.MayReplace ? ExistingFile::Replaced : ExistingFile::Kept;
    RequireWritable(name, existing);
    WriteReport report(out);
    report.Add(MaskKeys(name), /*look=*/{});
    const auto encoder = OpenEncoder(context.Parameters);
    const std::wstring serial = report.BeginCard(*encoder);
    CardReading reading(*encoder, keys, out);
    {
        ProgressBar bar(TrailerBlock(lastSector) + 1);
        for (int32_t sector = 0; sector <= lastSector; ++sector) {
            reading.ReadSector(sector, bar);
            if (sector == LastSector1K && options.Card.empty()) {
                try {
                    const std::optional<int32_t> open = FindSectorOf4K(*encoder, keys);
                    lastSector = open ? LastSector : LastSector1K;
                    sizeReason = open ? Format("a key opens sector %d", *open)
                                      : Format("no key opens a sector from %d on", LastSector1K + 1);
                } catch (const CardFailure&) {
                    bar.Erase();
                    out.Problem("whether the card has a sector 16 isn't known; --card 1k doesn't ask");
                    throw;
                }
                bar.SetSteps(TrailerBlock(lastSector) + 1);
            }
            RequireCard(*encoder, serial, sector);
        }
    }
    WriteDump(name, reading.Result(), existing);
    report.ConfirmFile();
    ShowOpenings(reading.Openings(), options.Key, out);
    int blocks = 0;
    int read = 0;
    for (const DumpedBlock& block : reading.Result()) {
        read += IsRead(block, blocks++) ? 1 : 0;
    }
    out.Print(Format("card %s, taken for %s, since %s\n%d of %d blocks read; the file is %s",
                     ToUtf8(serial).c_str(), lastSector == LastSector1K ? "1K" : "4K", sizeReason.c_str(),
                     read, blocks, MaskKeys(name).c_str()));
    out.Json["size"] = lastSector == LastSector1K ? "1k" : "4k";
    out.Json["sizeReason"] = sizeReason;
    out.Json["blocks"] = blocks;
    out.Json["blocksRead"] = read;
    return reading.IsComplete() ? Done : Failed;
}

} // namespace

void AddDump(CommandLine& commands)
{
    auto [command, options] = commands.Add("dump", "Reads the whole card into a file",
                                           "acg dump card.txt --key-file keys.txt", DumpCard);
    command.Argument("FILE", options.File,
                     "The file: raw bytes, or 32 digits a line if its name ends in .txt. A key that the card "
                     "doesn't show is filled in from the one that opened the sector");
    AddKeyOptions(
        command, options.Key,
        "A file of keys, all of them tried in turn; one a line, \"#\" begins a comment. Without both "
        "options: the variable ACG_KEY, else FFFFFFFFFFFF");
    command.Option("--card", "1k|4k", options.Card,
                   "The card's size; without it, 4K if a key opens a sector from 16 on, otherwise 1K");
    command.Flag("--force", options.MayReplace, "Replace FILE if it exists");
}

} // namespace acg::tool
