#include "tool/Json.h"

#include "tool/Failures.h"
#include "tool/Text.h"

#include <nlohmann/json.hpp>

namespace acg::tool
{

JsonObject ToJson(const CError& Failure)
{
    const Remedy* const remedy = FindRemedy(Failure);
    return {
        {"number", Failure.Number},
        {"description", ToUtf8(Failure.Description)},
        {"lastDllError", Failure.LastDllError},
        {"comFunction", ToUtf8(Failure.ComFunction)},
        {"rdrCommand", ToUtf8(Failure.RdrCommand)},
        {"rdrRetCode", ToUtf8(Failure.RdrRetCode)},
        {"meaning", remedy != nullptr ? remedy->Meaning : ""},
        {"remedy", remedy != nullptr ? ActionOf(*remedy) : ""},
    };
}

JsonObject ToJson(const ShownAccess& Result)
{
    const SectorRights rights = RightsGranted(Result.Bytes);
    JsonObject levels = JsonObject::array();
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        levels.push_back(LevelOf(BlockRightsOf(TripleIn(Result.Bytes, slot))));
    }
    levels.push_back(LevelOf(rights.Trailer));
    JsonObject rows = JsonObject::array();
    for (const AccessRow& row : AccessRows(Result.Bytes, Result.Sector)) {
        rows.push_back({{"what", row.What}, {"keyA", row.KeyA}, {"keyB", row.KeyB}});
    }
    return {
        {"sector", Result.Sector ? JsonObject(*Result.Sector) : JsonObject()},
        {"accessBits", AccessBitsText(Result.Bytes)},
        {"byte9", Result.UserByte ? JsonObject(*Result.UserByte) : JsonObject()},
        {"levels", levels},
        {"keys", KeysUsedBy(rights.Trailer)},
        {"may", rows},
        {"accessFixedForGood", AreConditionsFixed(rights.Trailer)},
        {"keysFixedForGood", AreKeysFixed(rights.Trailer)},
        {"deviations", Result.Deviations},
    };
}

} // namespace acg::tool
