// How a call's failure becomes a result code.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace acg
{

/// The result code of the exception that is being handled. A raised failure leaves its description and source
/// as the thread's error information: a negative number is its own result code, a positive one goes out in
/// the range that Automation hosts turn back into the number. Any other failure leaves none.
HRESULT ResultOfException() noexcept;

/// Runs a member; no C++ exception gets past it, and what an earlier call has left as error information isn't
/// taken for its own.
template <class Body>
HRESULT Guarded(const Body& Run) noexcept
{
    try {
        const HRESULT result = Run();
        if (FAILED(result)) {
            SetErrorInfo(0, nullptr);
        }
        return result;
    } catch (...) {
        return ResultOfException();
    }
}

} // namespace acg
