// The record of the last failure.
#pragma once

#include <cstdint>
#include <string>

namespace acg
{

/// One for each Encoder, shared with the host. No field ever contains a key.
struct CError {
    int32_t Number = 0;       ///< 0 for none
    std::wstring Description; ///< empty for none
    int32_t LastDllError = 0; ///< the system's error code after a failed library call, else 0
    std::wstring ComFunction; ///< the outermost operation that has reported the failure
    std::wstring RdrCommand;  ///< the path below it, joined by ":", down to the reader function or command
    std::wstring RdrRetCode;  ///< what the reader answered, as a rule one status letter, else empty

    bool operator==(const CError&) const = default;
};

} // namespace acg
