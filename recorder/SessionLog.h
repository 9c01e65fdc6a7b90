// The log of a session with a reader library, one line a call; recorder/README.md describes it. What writes
// it and what reads it are both here.
#pragma once

#include "exports/ReaderLibrary.h"

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace recorder
{

/// A call as it is in the log: no key is in it.
struct LoggedCall {
    std::string Call;   ///< function and arguments
    std::string Result; ///< a number, or a text between quotes
};

/// Of a function that takes numbers only, buffers aside.
[[nodiscard]] std::string CallText(std::string_view Function, std::initializer_list<int64_t> Arguments);
[[nodiscard]] std::string OpenCommText(std::string_view Device, uint8_t Autodetect,
                                       const exports::CommSettings& Settings);
[[nodiscard]] std::string CommandText(uint32_t Reader, std::string_view Command, std::string_view Data);

[[nodiscard]] std::string ResultText(int64_t Result);
[[nodiscard]] std::string ResultText(std::string_view Result);
[[nodiscard]] std::string ReplyText(std::string_view Command, std::string_view Data, std::string_view Reply);

/// Start: since the session began. With a line feed at the end.
[[nodiscard]] std::string LogLine(const LoggedCall& Logged, std::chrono::microseconds Start,
                                  std::chrono::microseconds Duration);
/// A line that is no call. Control characters of the text become "?".
[[nodiscard]] std::string NoteLine(std::string_view Note);

/// A line without its line feed. Nothing where it isn't a line of a log; an empty Call where it is none of a
/// call.
[[nodiscard]] std::optional<LoggedCall> ParseLine(std::string_view Line);

/// True where the calls are the same; the device of OpenComm may be another.
[[nodiscard]] bool IsSameCall(std::string_view Call, std::string_view Other);

// The values of a result; 0 or empty where it is of the other kind.
[[nodiscard]] int64_t NumberOf(const std::string& Result);
/// The digits of a masked key are zeros.
[[nodiscard]] std::string TextOf(const std::string& Result);

} // namespace recorder
