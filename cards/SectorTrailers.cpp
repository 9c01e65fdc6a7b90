// Reading and writing a sector's trailer: its keys, and what they may do.
//
//     bytes  0 to 5   6 to 8        9    10 to 15
//            key A    access bits   BX   key B
#include "cards/AccessBits.h"
#include "cards/BlockAddress.h"
#include "cards/BlockText.h"
#include "encoder/Encoder.h"
#include "encoder/NumberReading.h"
#include "reader/HexText.h"

#include <algorithm>

namespace acg
{

namespace
{

constexpr int32_t KeyDigits = 12;
constexpr size_t FirstConditionByte = 6;
constexpr size_t UserByte = 9;
constexpr unsigned TrailerSlot = 3;

/// A pair that isn't hexadecimal counts as far as it can be read.
uint8_t ByteOf(std::wstring_view block, size_t byte)
{
    constexpr std::wstring_view Hexadecimal = L"&h";
    wchar_t number[Hexadecimal.size() + DigitsOfByte] = {};
    const size_t sign = Hexadecimal.copy(number, Hexadecimal.size());
    const size_t digits = block.copy(number + sign, DigitsOfByte, byte * DigitsOfByte);
    return static_cast<uint8_t>(ReadWholeNumber({number, sign + digits}));
}

ConditionBytes ConditionBytesOf(std::wstring_view trailer)
{
    return {ByteOf(trailer, FirstConditionByte), ByteOf(trailer, FirstConditionByte + 1),
            ByteOf(trailer, FirstConditionByte + 2)};
}

sceReturnCode Store(AccessTriple triple, uint8_t mask, ConditionBytes& bytes)
{
    if (triple == RefusedLevel) {
        return sceError;
    }
    StoreAccessBits(triple, mask, bytes);
    return sceSuccess;
}

bool IsByte(int32_t number)
{
    return number >= 0 && number <= UINT8_MAX;
}

} // namespace

sceReturnCode Encoder::ReadSectorTrailer(int32_t SectorNumber, const SecretText& key, uint8_t KeyType,
                                         uint8_t& KeysUsed, SCBS_SecurityLevelEnum& Security0,
                                         SCBS_SecurityLevelEnum& Security1, SCBS_SecurityLevelEnum& Security2,
                                         SCSS_SecurityLevelEnum& Conditions, uint8_t& BX)
{
    constexpr std::wstring_view OperationName = L"ReadSectorTrailer";

    ResetLastError();
    Security0 = Security1 = Security2 = SCBS_SecurityLevelEnum{};
    Conditions = SCSS_SecurityLevelEnum{};
    SecretText trailer; // key B may be readable
    trailer.Reserve(BlockDigits);
    if (ReadDataBloc(TrailerBlock(SectorNumber), key, KeyType, trailer.InPlace()) == sceError) {
        TraceLastError(OperationName);
        return sceError;
    }
    BX = ByteOf(trailer, UserByte);
    const ConditionBytes bytes = ConditionBytesOf(trailer);
    const auto blockLevel = [&bytes](unsigned slot) {
        return static_cast<SCBS_SecurityLevelEnum>(DecodeSlot(bytes, slot).BlockLevel);
    };
    Security0 = blockLevel(0);
    Security1 = blockLevel(1);
    Security2 = blockLevel(2);
    const DecodedAccess& ofTrailer = DecodeSlot(bytes, TrailerSlot);
    KeysUsed = ofTrailer.KeysUsed;
    Conditions = static_cast<SCSS_SecurityLevelEnum>(ofTrailer.TrailerLevel);
    ResetLastError(OperationName);
    return sceSuccess;
}

sceReturnCode Encoder::WriteSectorTrailer(int32_t SectorNumber, const SecretText& key, uint8_t KeyType,
                                          const SecretText& KeyA, const SecretText& KeyB, uint8_t KeysToUse,
                                          SCBS_SecurityLevelEnum Security0, SCBS_SecurityLevelEnum Security1,
                                          SCBS_SecurityLevelEnum Security2, SCSS_SecurityLevelEnum Conditions,
                                          std::optional<int32_t> BX)
{
    static constexpr std::wstring_view OperationName = L"WriteSectorTrailer";
    const auto refuse = [this](const KnownFailure& refusal) {
        RecordRefusal(refusal, OperationName);
        return sceError;
    };
    const auto fail = [this] {
        TraceLastError(OperationName);
        return sceError;
    };

    ResetLastError();
    SecretText keyA(KeyA.Characters());
    SecretText keyB(KeyB.Characters());
    if (!IsHexString(keyA.InPlace(), KeyDigits) || !IsHexString(keyB.InPlace(), KeyDigits)) {
        return refuse(BadKey);
    }
    for (const int32_t level : std::initializer_list<int32_t>{Security0, Security1, Security2, Conditions}) {
        if (level < KeepBlockAccess || level > HighestLevel) {
            return refuse(BadSecurity);
        }
    }
    if (BX && !IsByte(*BX)) {
        return refuse(BadBX);
    }

    const int32_t trailerBlock = TrailerBlock(SectorNumber);
    SecretText oldTrailer;
    oldTrailer.Reserve(BlockDigits);
    if (ReadDataBloc(trailerBlock, key, KeyType, oldTrailer.InPlace()) == sceError) {
        return fail();
    }
    // The trailer is read once more for the key mode and byte 9; the levels are of no interest here.
    uint8_t keysUsed = 0;
    uint8_t userByte = 0;
    SCBS_SecurityLevelEnum blockLevel{};
    SCSS_SecurityLevelEnum trailerLevel{};
    if (ReadSectorTrailer(SectorNumber, key, KeyType, keysUsed, blockLevel, blockLevel, blockLevel,
                          trailerLevel, userByte) == sceError) {
        return fail();
    }

    const uint8_t keyMode = KeysToUse == KeysAsOnCard ? keysUsed : KeysToUse;
    ConditionBytes bytes = ConditionBytesOf(oldTrailer);
    // In a sector of 16 blocks too, its last three data blocks are looked up as value blocks.
    const std::initializer_list<sceReturnCode> encoded = {
        SetBlockAccess(Security0, keyMode, /*Mask=*/1, BlockBefore(trailerBlock, 3), bytes),
        SetBlockAccess(Security1, keyMode, /*Mask=*/2, BlockBefore(trailerBlock, 2), bytes),
        SetBlockAccess(Security2, keyMode, /*Mask=*/4, BlockBefore(trailerBlock, 1), bytes),
        SetTrailerAccess(Conditions, keyMode, /*Mask=*/8, bytes),
    };
    if (std::ranges::find(encoded, sceError) != encoded.end()) {
        return refuse(BadSecurity);
    }

    SecretText newTrailer;
    newTrailer.Reserve(BlockDigits);
    newTrailer += keyA;
    for (const uint8_t byte : bytes) {
        newTrailer += TwoHexDigits(byte);
    }
    newTrailer += TwoHexDigits(BX.value_or(userByte));
    newTrailer += keyB;
    if (WriteDataBloc(trailerBlock, key, KeyType, newTrailer.InPlace()) == sceError) {
        return fail();
    }
    ResetLastError(OperationName);
    return sceSuccess;
}

sceReturnCode Encoder::SetBlockAccess(int32_t Level, uint8_t KeysToUse, uint8_t Mask, int32_t BlocNumber,
                                      ConditionBytes& Bytes) const
{
    if (Level < 0) {
        return sceSuccess;
    }
    // WriteSectorTrailer has read the trailer by now, so the encoder is open and has a list.
    const bool isValueBlock =
        m_colValueBlocks && std::ranges::find(*m_colValueBlocks, BlocNumber) != m_colValueBlocks->end();
    return Store(BlockTriple(Level, KeysToUse, isValueBlock), Mask, Bytes);
}

sceReturnCode Encoder::SetTrailerAccess(int32_t Level, uint8_t KeysToUse, uint8_t Mask, ConditionBytes& Bytes)
{
    return Level < 0 ? sceSuccess : Store(TrailerTriple(Level, KeysToUse), Mask, Bytes);
}

} // namespace acg
