// How a command ends that can't do what it is asked: it throws one of these, and the program's end prints it.
#pragma once

#include "encoder/CError.h"

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

/// The command line, or a file that it names, can't be used: WrongUse. Text never holds a key.
struct UsageError {
    std::string Text;
};

/// Ctrl-C.
struct Interruption {
};

/// What a failure means and what to do about it, as in the README's table "What goes wrong".
struct Remedy {
    int32_t Number;
    std::string_view Path;    ///< how RdrCommand ends
    std::string_view Letters; ///< what RdrRetCode is one of; empty: anything
    std::string_view Meaning;
    std::string_view Action;
};

/// In the order of the README; of several that fit, the first one counts.
[[nodiscard]] std::span<const Remedy> Remedies();

/// The row of a record; null where there is none.
[[nodiscard]] const Remedy* FindRemedy(const CError& Record);

/// A record in words: several lines, the last one without its end.
[[nodiscard]] std::string InWords(const CError& Record);

} // namespace acg::tool
