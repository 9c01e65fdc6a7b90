// Results as JSON, for --json: one object, with the end of its line.
#pragma once

#include "acg/AccessWords.h"
#include "encoder/CError.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace acg::tool
{

/// What "info" finds out.
struct ReaderInfo {
    std::string Settings;          ///< the parameter text that the reader was opened with
    std::string ReaderType;        ///< empty where the reader doesn't say
    std::string State;             ///< in words
    std::string Serial;            ///< of the card; empty where there is none
    std::optional<CError> Failure; ///< why something is missing
};

/// What "read" shows of one block.
struct ShownBlock {
    int32_t Number;
    std::string Digits;     ///< 32, with "-" for those of a key
    std::string Characters; ///< 16, with "." for what can't be printed
};

/// What "trailer" and "preview" show.
struct ShownAccess {
    SectorNumber Sector; ///< none for "preview"
    ConditionBytes Bytes;
    std::optional<uint8_t> UserByte;
    std::vector<std::string> Deviations;
};

[[nodiscard]] std::string Json(const ReaderInfo& Result);
[[nodiscard]] std::string Json(const ShownAccess& Result);
[[nodiscard]] std::string Json(std::span<const ShownBlock> Result);
/// Of a command that failed.
[[nodiscard]] std::string Json(const CError& Failure);

} // namespace acg::tool
