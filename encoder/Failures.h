// The failures that the component itself finds. Any other number in a record is a call failure of the reader
// library.
#pragma once

#include "reader/Failure.h"

#include <cstdint>

namespace acg
{

struct KnownFailure {
    int32_t Number;
    const wchar_t* Description;
};

/// The failure as one that is raised.
inline Failure Raised(const KnownFailure& Known)
{
    return {Known.Number, Known.Description};
}

// -3 isn't assigned.
inline constexpr KnownFailure EncoderIsClosed{-1, L"Encoder is closed"};
inline constexpr KnownFailure CannotOpenEncoder{-2, L"Cannot open encoder"};
inline constexpr KnownFailure NoEncoderFound{-4, L"No encoder found"};
inline constexpr KnownFailure EncoderCommandFailed{-5, L"Encoder command failed"};
inline constexpr KnownFailure EncoderFailure{-6, L"Encoder failure"};
inline constexpr KnownFailure AuthenticationFailure{-7, L"Authentication failure"};
inline constexpr KnownFailure NoCardInEncoder{-8, L"No card in encoder"};
inline constexpr KnownFailure ReadErrorOnEncoder{-9, L"Read error on encoder"};
inline constexpr KnownFailure WriteErrorOnEncoder{-10, L"Write error on encoder"};
inline constexpr KnownFailure BadDataBloc{-11, L"A data bloc must contain 32 hex digits"};
inline constexpr KnownFailure BadKey{-12, L"A key must contain 12 hex digits"};
inline constexpr KnownFailure BadSecurity{-13, L"Invalid security information in parameters"};
inline constexpr KnownFailure BadOffsets{-14, L"Incorrect offsets in parameters"};
inline constexpr KnownFailure BadBX{-15, L"Incorrect value for BX"};
inline constexpr KnownFailure FeatureNotSupported{-16, L"Feature not supported"};

} // namespace acg
