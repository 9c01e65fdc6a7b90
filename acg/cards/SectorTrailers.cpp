// Reading and writing a sector's trailer: its keys, and what they may do.
#include "acg/cards/AccessBits.h"
#include "acg/cards/BlockAddress.h"
#include "acg/cards/BlockText.h"
#include "acg/cards/TrailerLayout.h"
#include "acg/encoder/Encoder.h"
#include "acg/encoder/Failures.h"
#include "acg/platform/HexText.h"

#include <algorithm>
#include <utility>

namespace acg
{

namespace
{

constexpr size_t KeyDigits = KeySize * DigitsOfByte;

Failure Store(std::optional<AccessTriple> triple, uint8_t mask, ConditionBytes& bytes)
{
    if (!triple) {
        return BadSecurity;
    }
    StoreAccessBits(*triple, mask, bytes);
    return {};
}

} // namespace

sceReturnCode Encoder::ReadSectorTrailer(int32_t SectorNumber, std::wstring_view key, uint8_t KeyType,
                                         uint8_t& KeysUsed, SCBS_SecurityLevelEnum& Security0,
                                         SCBS_SecurityLevelEnum& Security1, SCBS_SecurityLevelEnum& Security2,
                                         SCSS_SecurityLevelEnum& Conditions, uint8_t& BX)
{
    constexpr std::wstring_view OperationName = L"ReadSectorTrailer";

    ResetLastError();
    Security0 = Security1 = Security2 = SCBS_SecurityLevelEnum{};
    Conditions = SCSS_SecurityLevelEnum{};
    BlockText text;
    if (ReadDataBloc(TrailerBlock(SectorNumber), key, KeyType, text.Text) == sceError) {
        return FailBelow(OperationName);
    }
    const std::wstring_view trailer = text.Text;
    BX = UserByteOf(trailer);
    const ConditionBytes bytes = ConditionBytesOf(trailer);
    const auto blockLevel = [&bytes](unsigned slot) {
        return static_cast<SCBS_SecurityLevelEnum>(LevelOf(BlockRightsOf(TripleIn(bytes, slot))));
    };
    Security0 = blockLevel(0);
    Security1 = blockLevel(1);
    Security2 = blockLevel(2);
    const TrailerRights& ofTrailer = TrailerRightsOf(TripleIn(bytes, TrailerSlot));
    KeysUsed = KeysUsedBy(ofTrailer);
    Conditions = static_cast<SCSS_SecurityLevelEnum>(LevelOf(ofTrailer));
    ResetLastError(OperationName);
    return sceSuccess;
}

sceReturnCode Encoder::WriteSectorTrailer(int32_t SectorNumber, std::wstring_view key, uint8_t KeyType,
                                          std::wstring_view KeyA, std::wstring_view KeyB, uint8_t KeysToUse,
                                          SCBS_SecurityLevelEnum Security0, SCBS_SecurityLevelEnum Security1,
                                          SCBS_SecurityLevelEnum Security2, SCSS_SecurityLevelEnum Conditions,
                                          std::optional<int32_t> BX)
{
    constexpr std::wstring_view OperationName = L"WriteSectorTrailer";

    ResetLastError();
    if (!AreHexDigits(KeyA, KeyDigits) || !AreHexDigits(KeyB, KeyDigits)) {
        return Fail(BadKey, OperationName);
    }
    const int32_t levels[SectorSlots] = {Security0, Security1, Security2, Conditions};
    for (const int32_t level : levels) {
        if (level < KeepBlockAccess || level > HighestLevel) {
            return Fail(BadSecurity, OperationName);
        }
    }
    if (BX && !std::in_range<uint8_t>(*BX)) {
        return Fail(BadBX, OperationName);
    }

    const int32_t trailerBlock = TrailerBlock(SectorNumber);
    BlockText trailer;
    if (ReadDataBloc(trailerBlock, key, KeyType, trailer.Text) == sceError) {
        return FailBelow(OperationName);
    }
    // A second read, for the key mode and byte 9: the commands sent to the reader are part of the interface.
    uint8_t keysUsed = 0;
    uint8_t userByte = 0;
    SCBS_SecurityLevelEnum blockLevel{};
    SCSS_SecurityLevelEnum trailerLevel{};
    if (ReadSectorTrailer(SectorNumber, key, KeyType, keysUsed, blockLevel, blockLevel, blockLevel,
                          trailerLevel, userByte) == sceError) {
        return FailBelow(OperationName);
    }

    const uint8_t keyMode = KeysToUse == KeysAsOnCard ? keysUsed : KeysToUse;
    ConditionBytes bytes = ConditionBytesOf(trailer.Text);
    // In a sector of 16 blocks too, its last three data blocks are looked up as value blocks.
    for (unsigned slot = 0; slot < DataSlots; ++slot) {
        const auto block =
            static_cast<int32_t>(static_cast<uint32_t>(trailerBlock) - (DataSlots - slot)); // may wrap
        if (const Failure failure = SetBlockAccess(levels[slot], keyMode, MaskOf(slot), block, bytes)) {
            return Fail(failure, OperationName);
        }
    }
    if (const Failure failure = SetTrailerAccess(Conditions, keyMode, MaskOf(TrailerSlot), bytes)) {
        return Fail(failure, OperationName);
    }

    trailer.Text = TrimBlanks(KeyA);
    for (const uint8_t byte : bytes) {
        trailer.Text += TwoHexDigits(byte);
    }
    trailer.Text += TwoHexDigits(BX.value_or(userByte));
    trailer.Text += TrimBlanks(KeyB);
    if (WriteDataBloc(trailerBlock, key, KeyType, trailer.Text) == sceError) {
        return FailBelow(OperationName);
    }
    ResetLastError(OperationName);
    return sceSuccess;
}

Failure Encoder::SetBlockAccess(int32_t Level, uint8_t KeysToUse, uint8_t Mask, int32_t BlocNumber,
                                ConditionBytes& bytes) const
{
    if (Level < 0) {
        return {};
    }
    const bool isValueBlock = std::ranges::find(m_colValueBlocks, BlocNumber) != m_colValueBlocks.end();
    return Store(BlockTriple(Level, KeysToUse, isValueBlock), Mask, bytes);
}

Failure Encoder::SetTrailerAccess(int32_t Level, uint8_t KeysToUse, uint8_t Mask, ConditionBytes& bytes)
{
    return Level < 0 ? Failure() : Store(TrailerTriple(Level, KeysToUse), Mask, bytes);
}

} // namespace acg
