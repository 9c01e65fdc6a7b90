// The failures that the component itself finds. Any other number in a record is a call failure of the reader
// library.
#pragma once

#include "acg/reader/Failure.h"

namespace acg
{

// -3, -9 and -10 aren't used.
inline constexpr Failure EncoderIsClosed{-1, L"Encoder is closed"};
inline constexpr Failure CannotOpenLink{-2, L"Cannot open encoder"};
inline constexpr Failure CannotOpenReader{-2, L"Cannot open encoder", /*LastDllError=*/0, L'0'};
inline constexpr Failure NoEncoderFound{-4, L"No encoder found", /*LastDllError=*/0, L'0'};
inline constexpr Failure EncoderCommandFailed{-5, L"Encoder command failed"};
inline constexpr Failure EncoderFailure{-6, L"Encoder failure"};
inline constexpr Failure AuthenticationFailure{-7, L"Authentication failure"};
inline constexpr Failure NoCardInEncoder{-8, L"No card in encoder"};
inline constexpr Failure BadDataBloc{-11, L"A data bloc must contain 32 hex digits"};
inline constexpr Failure BadKey{-12, L"A key must contain 12 hex digits"};
inline constexpr Failure BadSecurity{-13, L"Invalid security information in parameters"};
inline constexpr Failure BadOffsets{-14, L"Incorrect offsets in parameters"};
inline constexpr Failure BadBX{-15, L"Incorrect value for BX"};
inline constexpr Failure FeatureNotSupported{-16, L"Feature not supported"};

} // namespace acg
