// What protect is to do with one sector, and whether the card's rights allow it.
#pragma once

#include "tool/CardSession.h"
#include "tool/Output.h"
#include "tool/SectorAccess.h"
#include "tool/WriteReport.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace acg::tool
{

/// What is wanted, the same for every sector.
struct ProtectRequest {
    LoginKey Login;
    std::vector<Key> Keys; ///< the new keys A and B; empty: they stay as they are
    // KeysToUse is KeysAsOnCard, and BX none, if the card's stay.
    SectorLevels Levels;
    std::optional<uint8_t> BX;
    bool IsFactory = false;
    bool Erases = false; ///< fills the data blocks with zeros; with new keys, of which A may then write them
};

/// A value block that is written again before the trailer, so that the class stores the rights of a purse.
struct Purse {
    int32_t Block;
    int32_t Value;
};

/// When the data blocks are filled with zeros.
enum class Erasure {
    None,
    First,     ///< with the key of the login
    Afterwards ///< with the new key A, since that of the login may not write all of them
};

struct SectorPlan {
    int32_t Sector;
    ConditionBytes Before{};
    uint8_t UserByteBefore = 0;
    SectorLevels Levels;
    ConditionBytes Bytes{}; ///< the access bits of the levels
    uint8_t BX = 0;
    bool IsDone = false; ///< the sector has these keys and levels already
    Erasure Erase = Erasure::None;
    std::vector<Purse> Purses;

    /// Key B is a key once the trailer is written.
    [[nodiscard]] bool IsKeyB() const { return KeysUsedBy(TrailerRightsIn(Bytes)) == BothKeys; }
};

/// Reads the trailer, with the new key A if the login's key doesn't open the sector. Throws as CardSession
/// does, UsageError for levels that can't be stored, and OtherFailure for a sector that has the new key A and
/// other levels or another key B.
[[nodiscard]] SectorPlan PlanSector(CardSession& card, const ProtectRequest& request, int32_t sector);

/// Throws OtherFailure or UsageError if the login's key may not write all that the plan has; says what is
/// written beside the trailer, and adds it to the plan.
void CompletePlan(CardSession& card, const ProtectRequest& request, SectorPlan& plan, Output& out);

/// Adds the parts that WriteSector writes. isAlone: it is the command's only sector.
void AddParts(const ProtectRequest& request, const SectorPlan& plan, bool isAlone, WriteReport& report);

/// Writes all of the plan and reads it back, logging in with each key that the sector then has.
void WriteSector(CardSession& card, const ProtectRequest& request, const SectorPlan& plan,
                 WriteReport& report);

} // namespace acg::tool
