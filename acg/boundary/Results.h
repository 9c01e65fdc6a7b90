// How a call's failure becomes a result code.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace acg
{

/// The result code of the exception that is being handled. A raised failure sets its description and source
/// as the thread's error information: a negative number is its own result code, a positive one is mapped to
/// the range from which Automation hosts recover the number. Any other failure sets none.
HRESULT ResultOfException() noexcept;

/// Runs a member. No C++ exception leaves it, and error information of an earlier call is cleared.
template <class Body>
HRESULT Guarded(const Body& body) noexcept
{
    try {
        const HRESULT result = body();
        if (FAILED(result)) {
            SetErrorInfo(0, nullptr);
        }
        return result;
    } catch (...) {
        return ResultOfException();
    }
}

} // namespace acg
