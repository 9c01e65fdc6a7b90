// acg dump: the whole card into a file.
#include "acg/AccessWords.h"
#include "acg/Blocks.h"
#include "acg/CommandLine.h"
#include "acg/Commands.h"
#include "acg/DumpFile.h"
#include "acg/Failures.h"
#include "acg/ProgressBar.h"
#include "acg/Text.h"
#include "cards/BlockAddress.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>

namespace acg::tool
{

namespace
{

// The last sectors of a 1K and a 4K card.
constexpr int32_t LastSector1K = 15;

struct Options {
    std::string File;
    KeyOptions Key;
    bool MayReplace = false; ///< --force
};

constexpr uint16_t KeyABytes = 0x003F;
constexpr uint16_t KeyBBytes = 0xFC00;

/// Why a block couldn't be read.
enum class Refusal {
    None,
    WrongKey,
    NoSuchBlock,
    NotGranted
};

/// Any other failure means that nothing more can be read at all: it is thrown.
Refusal RefusalOf(const CError& record)
{
    const bool isLogin = record.RdrCommand.ends_with(L"login");
    const wchar_t letter = record.RdrRetCode.empty() ? L'\0' : record.RdrRetCode.front();
    if ((!isLogin && !record.RdrCommand.ends_with(L"read block")) || letter == L'\0' || letter == L'N') {
        throw CardFailure{record};
    }
    if (letter == L'R') {
        return Refusal::NoSuchBlock;
    }
    // A reader that doesn't judge the login answers O to the block command.
    return isLogin || letter == L'O' ? Refusal::WrongKey : Refusal::NotGranted;
}

/// Which key of the list opens a sector, as the index; nothing where none does.
struct Opening {
    std::optional<size_t> A;
    std::optional<size_t> B;
    bool ShowsB = false; ///< the trailer shows key B

    bool operator==(const Opening&) const = default;
};

class CardReading
{
public:
    CardReading(Encoder& opened, std::vector<std::wstring> keys, Output& out)
        : m_encoder(opened), m_keys(std::move(keys)), m_out(out)
    {
    }

    /// The last sector of the card. A card whose sector 16 has other keys has that sector.
    int32_t FindLastSector()
    {
        DumpedBlock block;
        const Refusal refusal = Read(TrailerBlock(LastSector1K + 1), {m_keys.front(), KeyTypeA}, block);
        return refusal == Refusal::NoSuchBlock ? LastSector1K : LastSector;
    }

    /// Reads a sector behind those that are in the dump already.
    void ReadSector(int32_t sector, const ProgressBar& bar);

    [[nodiscard]] const Dump& Result() const { return m_dump; }
    [[nodiscard]] const std::vector<Opening>& Openings() const { return m_openings; }
    [[nodiscard]] bool IsComplete() const { return m_isComplete; }

private:
    Refusal Read(int32_t number, const Key& key, DumpedBlock& block);
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
    std::vector<std::wstring> m_keys;
    Output& m_out;
    Dump m_dump;
    std::vector<Opening> m_openings;
    bool m_isComplete = true;
};

Refusal CardReading::Read(int32_t number, const Key& key, DumpedBlock& block)
{
    try {
        block = {ReadBlock(m_encoder, number, key), AllKnown};
        return Refusal::None;
    } catch (const CardFailure& failure) {
        return RefusalOf(failure.Record);
    }
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
    const TrailerRights rights = RightsGranted(ConditionBytesOf(trailer.Bytes)).Trailer;
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
    PutKey(opening.A, 0, KeyABytes, trailer);
    if (!opening.ShowsB) {
        PutKey(opening.B, 10, KeyBBytes, trailer);
    }
    for (const auto& [name, bytes] : {std::pair{'A', KeyABytes}, std::pair{'B', KeyBBytes}}) {
        if (isOpen && (trailer.Known & bytes) == 0) {
            Miss(bar, Format("block %d, the trailer of sector %d: key %c isn't known", last, sector, name));
        }
    }
    m_dump.push_back(trailer);
    bar.Show(static_cast<int>(m_dump.size()));
}

/// Reads the block behind those that are in the dump.
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
        const std::string digits = ToUtf8(m_keys[*key]) + std::string(20, '0');
        std::copy_n(ParseBlock(digits)->begin(), 6, trailer.Bytes.begin() + static_cast<std::ptrdiff_t>(at));
        trailer.Known = static_cast<uint16_t>(trailer.Known | bytes);
    }
}

/// Where the keys come from, and what a key of that list is called.
struct KeyList {
    std::vector<std::wstring> Keys;
    bool AreNumbered;

    [[nodiscard]] std::string Name(const std::optional<size_t>& key) const
    {
        if (!key) {
            return "unknown";
        }
        return AreNumbered ? Format("key %d of the file", static_cast<int>(*key) + 1) : "the key";
    }
};

KeyList KeysOf(const Options& given)
{
    if (!given.Key.File.empty()) {
        return {ReadKeys(given.Key.File), /*AreNumbered=*/true};
    }
    return {{IsKeyGiven(given.Key) ? TheKey(given.Key).Digits : L"FFFFFFFFFFFF"}, /*AreNumbered=*/false};
}

/// A line for each run of sectors with the same keys.
void ShowOpenings(const std::vector<Opening>& openings, const KeyList& keys, Output& out)
{
    for (auto from = openings.begin(); from != openings.end();) {
        const auto end =
            std::find_if(from, openings.end(), [&](const Opening& other) { return other != *from; });
        const auto first = static_cast<int>(from - openings.begin());
        const auto last = static_cast<int>(end - openings.begin()) - 1;
        const std::string keyA = keys.Name(from->A);
        const std::string keyB = from->ShowsB ? "shown by the card" : keys.Name(from->B);
        out.Print(Format("sectors %2d to %2d  key A %s, key B %s", first, last, keyA.c_str(), keyB.c_str()));
        out.Json()["sectors"].push_back({{"first", first}, {"last", last}, {"keyA", keyA}, {"keyB", keyB}});
        from = end;
    }
}

int DumpCard(const Options& given, Context& context)
{
    const std::string& name = given.File;
    const KeyList keys = KeysOf(given);
    const NewFile file(name, given.MayReplace ? ExistingFile::Replaced : ExistingFile::Kept);
    const auto encoder = OpenReader(context.Parameters);
    CardReading reading(*encoder, keys.Keys, context.Out);
    const int32_t lastSector = reading.FindLastSector();
    {
        const ProgressBar bar(TrailerBlock(lastSector) + 1);
        for (int32_t sector = 0; sector <= lastSector; ++sector) {
            reading.ReadSector(sector, bar);
        }
    }
    file.Write(reading.Result());
    ShowOpenings(reading.Openings(), keys, context.Out);
    const auto blocks = static_cast<int>(reading.Result().size());
    context.Out.Print(Format("%d blocks written to %s", blocks, MaskKeys(name).c_str()));
    context.Out.Json()["blocks"] = blocks;
    return reading.IsComplete() ? Done : Failed;
}

} // namespace

void AddDump(CommandLine& Commands)
{
    const auto given = std::make_shared<Options>();
    CLI::App& command =
        Commands.Add("dump", "Reads the whole card into a file", "acg dump card.txt --key-file keys.txt",
                     [given](Context& context) { return DumpCard(*given, context); });
    command
        .add_option(
            "FILE", given->File,
            "Raw bytes, or, where the name ends in .txt, 32 digits a line. Keys that the card doesn't "
            "show are written from those that open it")
        ->required();
    TakesKeys(command, given->Key);
    command.add_flag("--force", given->MayReplace, "Replace FILE if it exists");
}

} // namespace acg::tool
