#include "tool/SectorPlan.h"

#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/SectorTrailer.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

/// The class stores a purse's rights for a slot by these blocks, also in a sector of 16 blocks.
int32_t PurseBlock(int32_t sector, unsigned slot)
{
    return TrailerBlock(sector) - static_cast<int32_t>(DataSlots - slot);
}

/// The slot whose access bits hold for that block.
unsigned SlotOfPurse(int32_t sector, unsigned slot)
{
    const bool isLarge = TrailerBlock(sector) - TrailerBlock(sector - 1) > int32_t{SectorSlots};
    return isLarge ? DataSlots - 1 : slot;
}

/// Without block 0.
std::vector<int32_t> DataBlocksOf(int32_t sector)
{
    std::vector<int32_t> blocks;
    for (int32_t block = std::max(TrailerBlock(sector - 1) + 1, 1); block < TrailerBlock(sector); ++block) {
        blocks.push_back(block);
    }
    return blocks;
}

/// The key that may, after a sentence about one that may not; the login's key isn't among them.
std::string OtherKey(KeySet holders)
{
    return holders == KeySet::None
               ? "; no key may"
               : Format("; %s may%s", NameOf(holders), holders == KeySet::B ? ": --as-b" : "");
}

/// The class sends a whole trailer, of which the card silently takes what the key may write.
void RequireRights(const ProtectRequest& request, const SectorPlan& plan)
{
    const TrailerRights& rights = TrailerRightsIn(plan.Before);
    const bool changesConditions = plan.Before != plan.Bytes || plan.UserByteBefore != plan.BX;
    const KeySet key = request.Login.AsKeySet();
    const bool mayWriteKeys = Has(rights.WriteKeys, key);
    const bool mayWriteConditions = Has(rights.WriteConditions, key);
    if (!mayWriteKeys && (!request.Keys.empty() || !mayWriteConditions)) {
        const char* const others = !mayWriteConditions ? ""
                                   : request.IsFactory
                                       ? ", only its levels. Sector by sector: acg protect SECTOR --levels "
                                         "rw/-,rw/-,rw/-,keys+bits/- --keys 1 --as-b, which can't be read "
                                         "back with key B; then --factory with key A"
                                       : ": without new keys, the access bits alone are written";
        throw OtherFailure{Format("%s may not write the keys of this sector%s%s", NameOf(key),
                                  mayWriteConditions ? "" : OtherKey(rights.WriteKeys).c_str(), others)};
    }
    if (mayWriteKeys && request.Keys.empty()) {
        throw UsageError{
            Format("%s may write the keys of this sector, so give both, new or "
                   "unchanged: --new-a and --new-b, --new-keys, or the variables ACG_NEW_A and ACG_NEW_B",
                   NameOf(key))};
    }
    if (changesConditions && !mayWriteConditions) {
        throw OtherFailure{Format("%s may not write the access bits and byte 9 of this sector%s", NameOf(key),
                                  OtherKey(rights.WriteConditions).c_str())};
    }
}

Purse ReadPurse(CardSession& card, const ProtectRequest& request, const SectorPlan& plan, unsigned slot,
                Output& out)
{
    const int32_t number = PurseBlock(plan.Sector, slot);
    const KeySet writers = RightsOfBits(plan.Before)[SlotOfPurse(plan.Sector, slot)][Right::Write];
    if (!Has(writers, request.Login.AsKeySet())) {
        throw OtherFailure{
            Format("--value %u writes block %d, which %s may write", slot, number, NameOf(writers))};
    }
    const ValueBlock block(card.ReadBlock(number, request.Login));
    if (!block.IsValid()) {
        throw OtherFailure{
            Format("block %d isn't a value block; to make it one: acg value %d NUMBER --key KEY%s", number,
                   number, request.Login.Option())};
    }
    out.Json["values"].push_back({{"block", number}, {"value", block.Value}});
    const std::string others = SlotOfPurse(plan.Sector, slot) != slot
                                   ? Format(", for %s,", NameOfSlot(slot, plan.Sector).c_str())
                                   : "";
    std::string line = Format("Block %d%s is written first, as a value block; its value stays %d", number,
                              others.c_str(), block.Value);
    const int address = block.Address.value_or(0); // it is a value block
    line += address != number ? Format(", its address %d becomes %d", address, number) : "";
    out.Print(line + ".");
    return {number, block.Value};
}

bool IsErased(CardSession& card, int32_t sector, const LoginKey& key)
{
    return std::ranges::all_of(DataBlocksOf(sector),
                               [&](int32_t block) { return card.ReadBlock(block, key) == Block{}; });
}

/// The login that may write all data blocks after a sector has the factory's trailer.
LoginKey NewLogin(const ProtectRequest& request)
{
    return {request.Keys.front(), KeyTypeA};
}

Erasure ErasureOf(CardSession& card, const ProtectRequest& request, const SectorPlan& plan)
{
    if (!request.Erases || (plan.IsDone && IsErased(card, plan.Sector, NewLogin(request)))) {
        return Erasure::None;
    }
    const SectorRights rights = RightsOfBits(plan.Before);
    const bool mayAll = std::ranges::all_of(DataBlocksOf(plan.Sector), [&](int32_t block) {
        return Has(rights[SlotOf(block)][Right::Write], request.Login.AsKeySet());
    });
    return mayAll && !plan.IsDone ? Erasure::First : Erasure::Afterwards;
}

void Erase(CardSession& card, int32_t sector, const LoginKey& key, WriteReport& report)
{
    for (const int32_t block : DataBlocksOf(sector)) {
        report.NoteSending(card, card.WriteBlock(block, key, {}));
    }
    if (!report.ReadBack(card, [&] { return IsErased(card, sector, key); })) {
        throw OtherFailure{Format("a data block of sector %d doesn't read back as zeros", sector)};
    }
}

void WritePurse(CardSession& card, const Purse& purse, const LoginKey& key, WriteReport& report)
{
    Encoder& encoder = card.Class();
    report.NoteSending(card, FailureOf(encoder, encoder.WriteValueBloc(purse.Block, DigitsOf(key.Bytes).Text,
                                                                       key.Type, purse.Value)));
    const bool isTaken = report.ReadBack(card, [&] {
        const ValueBlock block(card.ReadBlock(purse.Block, key));
        return block.HasCopies() && block.Value == purse.Value && block.Address == purse.Block;
    });
    if (!isTaken) {
        throw OtherFailure{Format("block %d doesn't read back as written", purse.Block)};
    }
}

void WriteTrailer(CardSession& card, const ProtectRequest& request, const SectorPlan& plan,
                  WriteReport& report)
{
    const auto level = [&](size_t slot) {
        return static_cast<SCBS_SecurityLevelEnum>(plan.Levels.Levels[slot]);
    };
    // Without new ones the card ignores the keys, by the rights that RequireRights has seen. The key of the
    // login would be the least harm if it took them.
    const Key& keyA = request.Keys.empty() ? request.Login.Bytes : request.Keys.front();
    const Key& keyB = request.Keys.empty() ? request.Login.Bytes : request.Keys.back();
    Encoder& encoder = card.Class();
    report.NoteSending(
        card, FailureOf(encoder,
                        encoder.WriteSectorTrailer(
                            plan.Sector, DigitsOf(request.Login.Bytes).Text, request.Login.Type,
                            DigitsOf(keyA).Text, DigitsOf(keyB).Text, plan.Levels.KeysToUse, level(0),
                            level(1), level(2),
                            static_cast<SCSS_SecurityLevelEnum>(plan.Levels.Levels[TrailerSlot]), plan.BX)));
}

/// Logs in with each key that the sector then has, and compares what reads back.
bool IsTaken(CardSession& card, const ProtectRequest& request, const SectorPlan& plan)
{
    std::vector<LoginKey> logins = {request.Login};
    if (!request.Keys.empty()) {
        logins = {{request.Keys.front(), KeyTypeA}};
        if (plan.IsKeyB()) {
            logins.push_back({request.Keys.back(), KeyTypeB});
        }
    }
    return std::ranges::all_of(logins, [&](const LoginKey& key) {
        const Trailer trailer = ReadTrailer(card, plan.Sector, key);
        return trailer.Conditions == plan.Bytes && trailer.UserByte == plan.BX &&
               (request.Keys.empty() || plan.IsKeyB() || trailer.KeyB == request.Keys.back());
    });
}

} // namespace

SectorPlan PlanSector(CardSession& card, const ProtectRequest& request, int32_t sector)
{
    SectorPlan plan{.Sector = sector, .Levels = request.Levels};
    Block block{};
    if (card.TryReadBlock(TrailerBlock(sector), request.Login, block) != Refusal::None) {
        const CError refusal = card.LastRefusal();
        plan.IsDone = !request.Keys.empty() &&
                      card.TryReadBlock(TrailerBlock(sector), NewLogin(request), block) == Refusal::None;
        if (!plan.IsDone) {
            throw CardFailure{refusal};
        }
    }
    const Trailer onCard = JudgeTrailer(block, sector);
    plan.Before = onCard.Conditions;
    plan.UserByteBefore = onCard.UserByte;
    // What isn't given is taken from the card here, so that nothing comes from what the class reads on
    // writing.
    if (plan.Levels.KeysToUse == KeysAsOnCard) {
        plan.Levels.KeysToUse = KeysUsedBy(TrailerRightsIn(onCard.Conditions));
    }
    plan.BX = request.BX.value_or(onCard.UserByte);
    plan.Bytes = EncodeOrRefuse(plan.Levels);
    const auto hasNewKeyB = [&] {
        return !plan.IsKeyB() || card.TryLogIn(sector, {request.Keys.back(), KeyTypeB}) == Refusal::None;
    };
    if (plan.IsDone && (!hasNewKeyB() || !IsTaken(card, request, plan))) {
        throw OtherFailure{
            Format("sector %d opens with the new key A, but has other levels or another key B: log in "
                   "with that key",
                   sector)};
    }
    return plan;
}

void CompletePlan(CardSession& card, const ProtectRequest& request, SectorPlan& plan, Output& out)
{
    if (!plan.IsDone) {
        RequireRights(request, plan);
        for (unsigned slot = 0; slot < DataSlots; ++slot) {
            if (plan.Levels.IsValueBlock[slot]) {
                plan.Purses.push_back(ReadPurse(card, request, plan, slot, out));
            }
        }
    }
    plan.Erase = ErasureOf(card, request, plan);
}

void AddParts(const ProtectRequest& request, const SectorPlan& plan, bool isAlone, WriteReport& report)
{
    const int32_t sector = plan.Sector;
    const auto addData = [&](const LoginKey& key) {
        const std::vector<int32_t> blocks = DataBlocksOf(sector);
        report.Add(Format("the data blocks of sector %d", sector),
                   Format("acg read %d-%d --key KEY%s", blocks.front(), blocks.back(), key.Option()));
    };
    if (plan.Erase == Erasure::First) {
        addData(request.Login);
    }
    for (unsigned slot = 0; slot < DataSlots && !plan.IsDone; ++slot) {
        if (request.Levels.IsValueBlock[slot]) {
            const int32_t block = PurseBlock(sector, slot);
            report.Add(Format("block %d", block), ReadCommand(block, request.Login));
        }
    }
    const char* with = request.Login.Option();
    if (!request.Keys.empty()) {
        with = request.Login.IsB() ? ", with the new key A, or if that fails with the old key and --as-b"
                                   : ", with the new key A, or if that fails with the old key";
    } else if (request.Levels.KeysToUse == KeyAAlone) {
        with = ", with key A";
    }
    if (!plan.IsDone) {
        report.Add(Format(!isAlone               ? "the trailer of sector %d"
                          : request.Keys.empty() ? "the access bits of sector %d"
                                                 : "the keys and the access bits of sector %d",
                          sector),
                   Format("acg trailer %d --key KEY%s", sector, with));
    }
    if (plan.Erase == Erasure::Afterwards) {
        addData(NewLogin(request));
    }
}

void WriteSector(CardSession& card, const ProtectRequest& request, const SectorPlan& plan,
                 WriteReport& report)
{
    if (plan.Erase == Erasure::First) {
        Erase(card, plan.Sector, request.Login, report);
    }
    for (const Purse& purse : plan.Purses) {
        WritePurse(card, purse, request.Login, report);
    }
    if (!plan.IsDone) {
        WriteTrailer(card, request, plan, report);
        if (request.Keys.empty() && !plan.IsKeyB()) {
            throw OtherFailure{"key B opens nothing now, so what was written can't be read back with it"};
        }
        if (!report.ReadBack(card, [&] { return IsTaken(card, request, plan); })) {
            throw OtherFailure{"the card doesn't read back as written"};
        }
    }
    if (plan.Erase == Erasure::Afterwards) {
        Erase(card, plan.Sector, NewLogin(request), report);
    }
}

} // namespace acg::tool
