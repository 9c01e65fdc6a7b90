// The log of a session with a reader library, one line a call; recorder/README.md describes it. What writes
// it and what reads it are both here.
#pragma once

#include "abi/ReaderLibrary.h"
#include "session/KeyMask.h"

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace session
{

/// A call as it is in the log: no key is in it.
struct LoggedCall {
    std::string Call;                   ///< function and arguments
    std::string Result;                 ///< a number, or a text between quotes
    std::chrono::microseconds Start{0}; ///< since the session began
    std::chrono::microseconds Duration{0};
};

/// The calls of the last lines were made again, in the same order and with the same results.
struct Repetition {
    size_t Calls; ///< of that many lines, up to LongestRound
    int64_t Times;
    std::chrono::microseconds Start;    ///< of the first time
    std::chrono::microseconds Duration; ///< of all times
};
inline constexpr size_t LongestRound = 8;

/// Calls that couldn't be written.
struct Gap {
    int64_t Calls;
};

/// A line of the log; without a value if it is another note, or empty.
using LoggedLine = std::variant<std::monostate, LoggedCall, Repetition, Gap>;

/// An argument of a call, with a blank before it. A buffer isn't written.
struct ArgumentText : std::string {
    ArgumentText(int64_t number);
    ArgumentText(const acgreader::CommSettings& settings);
    ArgumentText(std::string_view text, const Parts& shown = Everything);
    ArgumentText(acgreader::ReaderLibrary::Buffer /*buffer*/) {}
};
[[nodiscard]] std::string CallText(acgreader::Function function,
                                   std::initializer_list<ArgumentText> arguments);
/// A call of SendCommandGetData: what may be a key is masked.
[[nodiscard]] std::string CommandText(acgreader::Handle reader, std::string_view command,
                                      std::string_view data);

[[nodiscard]] std::string ResultText(int64_t result);
/// What follows the first NUL is masked, and of a reply what may be a key.
[[nodiscard]] std::string ResultText(std::string_view result);
[[nodiscard]] std::string ReplyText(std::string_view command, std::string_view data, std::string_view reply);

// Lines, each with a line feed at the end.
[[nodiscard]] std::string LogLine(const LoggedCall& logged);
[[nodiscard]] std::string LogLine(const Repetition& logged);
[[nodiscard]] std::string LogLine(const Gap& logged, std::string_view reason);
/// A line that is no call. Control characters of the text become "?".
[[nodiscard]] std::string NoteLine(std::string_view note);

/// A line without its line feed. Nothing, if it isn't a line of a log.
[[nodiscard]] std::optional<LoggedLine> ParseLine(std::string_view line);

/// True if the calls are the same; the device of OpenComm may be another.
[[nodiscard]] bool IsSameCall(std::string_view call, std::string_view other);

// The values of a result; 0 or empty if it is of the other kind.
[[nodiscard]] int64_t ParseNumber(const std::string& result);
/// The digits of a masked key are zeros.
[[nodiscard]] std::string ParseText(const std::string& result);

} // namespace session
