#include "acg/Json.h"

#include "acg/Failures.h"
#include "acg/Text.h"

#include <nlohmann/json.hpp>

namespace acg::tool
{

namespace
{

using Object = nlohmann::ordered_json;

std::string Line(const Object& object)
{
    return object.dump() + '\n';
}

Object FailureObject(const CError& record)
{
    const Remedy* const remedy = FindRemedy(record);
    return {
        {"number", record.Number},
        {"description", ToUtf8(record.Description)},
        {"lastDllError", record.LastDllError},
        {"comFunction", ToUtf8(record.ComFunction)},
        {"rdrCommand", ToUtf8(record.RdrCommand)},
        {"rdrRetCode", ToUtf8(record.RdrRetCode)},
        {"meaning", remedy != nullptr ? remedy->Meaning : ""},
        {"remedy", remedy != nullptr ? remedy->Action : ""},
    };
}

Object TextOrNull(const std::string& text)
{
    return text.empty() ? Object() : Object(text);
}

} // namespace

std::string Json(const ReaderInfo& Result)
{
    return Line({
        {"settings", Result.Settings},
        {"readerType", TextOrNull(Result.ReaderType)},
        {"state", Result.State},
        {"serial", TextOrNull(Result.Serial)},
        {"failure", Result.Failure ? FailureObject(*Result.Failure) : Object()},
    });
}

std::string Json(std::span<const ShownBlock> Result)
{
    Object blocks = Object::array();
    for (const ShownBlock& block : Result) {
        blocks.push_back({{"block", block.Number}, {"hex", block.Digits}, {"characters", block.Characters}});
    }
    return Line({{"blocks", blocks}});
}

std::string Json(const ShownAccess& Result)
{
    const SectorRights rights = RightsGranted(Result.Bytes);
    Object levels = Object::array();
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        levels.push_back(LevelOf(BlockRightsOf(TripleIn(Result.Bytes, slot))));
    }
    levels.push_back(LevelOf(rights.Trailer));
    Object rows = Object::array();
    for (const AccessRow& row : AccessRows(Result.Bytes, Result.Sector)) {
        rows.push_back({{"what", row.What}, {"keyA", row.KeyA}, {"keyB", row.KeyB}});
    }
    return Line({
        {"sector", Result.Sector ? Object(*Result.Sector) : Object()},
        {"accessBits", AccessBitsText(Result.Bytes)},
        {"byte9", Result.UserByte ? Object(*Result.UserByte) : Object()},
        {"levels", levels},
        {"keys", KeysUsedBy(rights.Trailer)},
        {"may", rows},
        {"accessFixedForGood", AreConditionsFixed(rights.Trailer)},
        {"keysFixedForGood", AreKeysFixed(rights.Trailer)},
        {"deviations", Result.Deviations},
    });
}

std::string Json(const CError& Failure)
{
    return Line({{"failure", FailureObject(Failure)}});
}

} // namespace acg::tool
