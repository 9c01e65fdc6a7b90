// Results as JSON, for --json.
#pragma once

#include "acg/encoder/CError.h"
#include "tool/AccessWords.h"
#include "tool/Output.h"

#include <optional>

namespace acg::tool
{

/// What "trailer" and "preview" show.
struct ShownAccess {
    SectorNumber Sector; ///< none for "preview"
    ConditionBytes Bytes;
    std::optional<uint8_t> UserByte;
    std::vector<std::string> Deviations;
};

[[nodiscard]] JsonObject ToJson(const ShownAccess& result);
[[nodiscard]] JsonObject ToJson(const CError& failure);

} // namespace acg::tool
