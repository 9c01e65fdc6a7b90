// A command that fails throws one of these, and CommandLine::Run prints it.
#pragma once

#include "acg/encoder/CError.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace acg::tool
{

// The program's exit statuses.
inline constexpr int Done = 0;
inline constexpr int Failed = 1;
inline constexpr int WrongUse = 2;
inline constexpr int Interrupted = 130; ///< as shells report Ctrl-C

/// The card or the reader failed: Failed, with the record in words.
struct CardFailure {
    CError Record;
};

/// Something other than the reader failed: Failed.
struct OtherFailure {
    std::string Text;
};

/// The command line, or a file that it names, can't be used: WrongUse. What may be a key in Text is masked
/// when it is printed.
struct UsageError {
    std::string Text;
};

/// Ctrl-C.
struct Interruption {
};

/// What a failure means, as docs/troubleshooting.md has it, and what a person at a prompt
/// can do about it. A letter that the component gives no meaning to has one with the simulated reader only.
struct Remedy {
    int32_t Number;
    std::string_view Path;    ///< how RdrCommand ends
    std::string_view Letters; ///< what RdrRetCode is one of; empty: anything
    std::string_view Meaning;
    std::string_view Action;
};

/// Those that this program can meet, in the order of that page; of several that fit, the first one counts.
[[nodiscard]] std::span<const Remedy> Remedies();

/// The row of a record; null if there is none.
[[nodiscard]] const Remedy* FindRemedy(const CError& record);

/// The meaning of a record, or its description if it has no row.
[[nodiscard]] std::string MeaningOf(const CError& record);

/// The action of a remedy; if the library wasn't found, also where it was searched for.
[[nodiscard]] std::string ActionOf(const Remedy& row);

/// A record in words: several lines, the last one without its end.
[[nodiscard]] std::string InWords(const CError& record);

} // namespace acg::tool
