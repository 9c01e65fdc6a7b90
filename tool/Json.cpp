#include "tool/Json.h"

#include "tool/Failures.h"
#include "tool/Text.h"

namespace acg::tool
{

JsonObject ToJson(const CError& failure)
{
    const Remedy* const remedy = FindRemedy(failure);
    return {
        {"number", failure.Number},
        {"description", ToUtf8(failure.Description)},
        {"lastDllError", failure.LastDllError},
        {"comFunction", ToUtf8(failure.ComFunction)},
        {"rdrCommand", ToUtf8(failure.RdrCommand)},
        {"rdrRetCode", ToUtf8(failure.RdrRetCode)},
        {"meaning", remedy != nullptr ? remedy->Meaning : ""},
        {"remedy", remedy != nullptr ? ActionOf(*remedy) : ""},
    };
}

JsonObject ToJson(const ShownAccess& result)
{
    const SectorRights rights = RightsGranted(result.Bytes);
    JsonObject levels = JsonObject::array();
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        levels.push_back(LevelOf(BlockRightsOf(TripleIn(result.Bytes, slot))));
    }
    levels.push_back(LevelOf(rights.Trailer));
    JsonObject rows = JsonObject::array();
    for (const AccessRow& row : AccessRows(result.Bytes, result.Sector)) {
        rows.push_back({{"what", row.What}, {"keyA", row.KeyA}, {"keyB", row.KeyB}});
    }
    return {
        {"sector", result.Sector ? JsonObject(*result.Sector) : JsonObject()},
        {"accessBits", AccessBitsText(result.Bytes)},
        {"byte9", result.UserByte ? JsonObject(*result.UserByte) : JsonObject()},
        {"levels", levels},
        {"keys", KeysUsedBy(rights.Trailer)},
        {"may", rows},
        {"accessFixedForGood", AreConditionsFixed(rights.Trailer)},
        {"keysFixedForGood", AreKeysFixed(rights.Trailer)},
        {"deviations", result.Deviations},
    };
}

} // namespace acg::tool
