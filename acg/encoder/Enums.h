// The public enums, as the type library declares them, the small numbers by which operations name keys, and
// the bytes of a trailer that hold its access bits.
#pragma once

#include <array>
#include <cstdint>

namespace acg
{

enum sceReturnCode : int32_t {
    sceSuccess = 0,
    sceCanceled = 1,
    sceError = 2,
};

enum sceEncoderState : int32_t {
    sceUnknown = 0, ///< the reader is open and fails for another reason than a missing card
    sceClosed = 1,
    sceOpened = 2, ///< no card in range
    sceReady = 3,  ///< a card could be selected
};

/// Declared for the host; no operation returns one of these values.
enum sceCardTypes : int32_t {
    sceUnhandled = 0,
    sceUnknownType = 1,
    sceMifare1K = 17,
    sceMifare4K = 18,
    sceMifareUltralight = 33,
    sceDESFire = 49,
    sceRfid125KHz = 65,
    scePicoPass2KS = 81,
};

/// The rights of both keys on a data block: one A value plus one B value.
enum SCBS_SecurityLevelEnum : int32_t {
    scbs_A_Nothing = 0,
    scbs_A_Read = 1,
    scbs_A_Write = 2,
    scbs_A_ReadWrite = 3,
    scbs_B_Nothing = 0,
    scbs_B_Read = 4,
    scbs_B_Write = 8,
    scbs_B_ReadWrite = 12,
};

/// The rights of both keys on the sector trailer: one A value plus one B value.
enum SCSS_SecurityLevelEnum : int32_t {
    scss_A_Nothing = 0,
    scss_A_WriteKeys = 1,
    scss_A_WriteConditions = 2,
    scss_A_WriteKeysConditions = 3,
    scss_B_Nothing = 0,
    scss_B_WriteKeys = 4,
    scss_B_WriteConditions = 8,
    scss_B_WriteKeysConditions = 12,
};

constexpr SCBS_SecurityLevelEnum operator+(SCBS_SecurityLevelEnum ofKeyA, SCBS_SecurityLevelEnum ofKeyB)
{
    return static_cast<SCBS_SecurityLevelEnum>(int32_t{ofKeyA} + int32_t{ofKeyB});
}

constexpr SCSS_SecurityLevelEnum operator+(SCSS_SecurityLevelEnum ofKeyA, SCSS_SecurityLevelEnum ofKeyB)
{
    return static_cast<SCSS_SecurityLevelEnum>(int32_t{ofKeyA} + int32_t{ofKeyB});
}

/// In place of a level: the card's access bits are kept.
inline constexpr SCBS_SecurityLevelEnum KeepBlockAccess{-1};
inline constexpr SCSS_SecurityLevelEnum KeepTrailerAccess{-1};

// KeyType: the key to log in with. Every value but KeyTypeB is key A.
inline constexpr uint8_t KeyTypeA = 1;
inline constexpr uint8_t KeyTypeB = 2;

// KeysToUse and KeysUsed: the keys that a sector works with. Every other value means both keys.
inline constexpr uint8_t KeysAsOnCard = 0; ///< only on writing
inline constexpr uint8_t KeyAAlone = 1;
inline constexpr uint8_t BothKeys = 2;

/// Bytes 6, 7 and 8 of a trailer, drawn in acg/cards/AccessBits.h: the access triple (C1, C2, C3) of each
/// slot, stored twice. The conditions of the interface are something else: the level of slot 3.
using ConditionBytes = std::array<uint8_t, 3>;

} // namespace acg
