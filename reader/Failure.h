// How a failure travels inside the component: as a value that the caller tests on the next line.
#pragma once

#include <cstdint>

namespace acg
{

/// A raised failure that is still pending, or none. Nothing else keeps it: letting go of the value clears it.
struct [[nodiscard]] Failure {
    int32_t Number = 0; ///< 0 for none; below 0 the component's own; above 0 a call failure
    const wchar_t* Description = L"";
    int32_t LastDllError = 0; ///< the system's error code right after the call, also where Number is 0

    explicit operator bool() const { return Number != 0; }
};

} // namespace acg
