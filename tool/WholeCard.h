// A card as a whole: how large it is, which keys of a list open its sectors, and what they read of it.
#pragma once

#include "tool/CardSession.h"
#include "tool/CommandLine.h"
#include "tool/DumpFile.h"
#include "tool/Keys.h"
#include "tool/ProgressBar.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace acg::tool
{

inline constexpr int32_t LastSector1K = 15;

struct CardSize {
    int32_t LastSector = LastSector1K;
    std::string Reason; ///< how it was found out, as in "a key opens sector 16"

    [[nodiscard]] const char* Name() const { return LastSector <= LastSector1K ? "1K" : "4K"; }
    [[nodiscard]] const char* JsonName() const { return LastSector <= LastSector1K ? "1k" : "4k"; }
};

/// Which key of the list opens a sector, as the index; nothing if none does.
struct Opening {
    std::optional<size_t> A;
    std::optional<size_t> B;
    bool ShowsB = false; ///< the trailer shows key B, which opens nothing

    bool operator==(const Opening&) const = default;
};

/// What the keys of a list read of a sector.
struct SectorContents {
    Opening Keys;
    Dump Blocks; ///< the trailer has the keys that opened the sector
    bool IsTrailerRead = false;
    std::vector<std::string> Refusals; ///< by block, why it couldn't be read; empty: it wasn't tried
};

struct WholeCard {
    std::string SerialNumber; ///< empty if a dump doesn't have it
    CardSize Size;
    Dump Blocks;                      ///< whole sectors; a trailer has the keys that opened the sector
    std::vector<Opening> Openings;    ///< one for each sector
    std::vector<std::string> Missing; ///< what couldn't be read, and why, a line each
};

void AddCardOption(CommandOptions& command, std::string& size);

/// --card: the size that it says, or nothing if it is empty. Throws UsageError.
[[nodiscard]] std::optional<CardSize> ParseCardSize(const std::string& size);

/// 4K if a key opens a sector from 16 to lastTried; 1K if the reader says that the card lacks one of them;
/// nothing if neither. Throws CardFailure if a reply concerns more than the sector: if the card has left, for
/// example.
[[nodiscard]] std::optional<CardSize> FindSize(CardSession& card, const KeyRing& keys, int32_t lastTried);

/// Tries all keys. Throws as CardSession does. bar: its steps are the card's blocks.
[[nodiscard]] SectorContents ReadSector(CardSession& card, int32_t sector, const KeyRing& keys,
                                        const ProgressBar& bar);

/// Reads it with a progress bar; all keys are tried on each sector. The serial number is compared after each
/// sector. size: none to find it out. Throws as CardSession does.
[[nodiscard]] WholeCard ReadWholeCard(CardSession& card, const KeyRing& keys,
                                      const std::optional<CardSize>& size, Output& out);
/// By Output::Problem.
void SayWhatIsMissing(const WholeCard& card, Output& out);

/// The card that was dumped; each sector is opened by its keys in the dump. Those that aren't in the list are
/// added to it, as "a key of the dump". No key opens a sector whose access bits contradict themselves.
[[nodiscard]] WholeCard CardFrom(Dump blocks, KeyRing& keys);

/// The card in the dump of --from, or, if from is empty, the one in the field, as ReadWholeCard reads it.
[[nodiscard]] WholeCard TakeCard(const std::string& from, const std::optional<CardSize>& size, KeyRing& keys,
                                 Context& context);

} // namespace acg::tool
