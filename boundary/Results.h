// How a call's failure becomes a result code.
#pragma once

#include <windows.h>

namespace acg
{

/// A failed call of the system, or an argument that a member can't do without.
struct ComFailure {
    HRESULT Result;
};

/// Ends the member where a call of the system has failed.
inline void Check(HRESULT Result)
{
    if (FAILED(Result)) {
        throw ComFailure{Result};
    }
}

/// What a pointer of the caller's leads to; null ends the member with E_POINTER.
template <class Variable>
Variable& Given(Variable* Pointer)
{
    if (Pointer == nullptr) {
        throw ComFailure{E_POINTER};
    }
    return *Pointer;
}

/// The result code of the exception that is being handled. A raised failure leaves its description and source
/// as the thread's error information: a negative number is its own result code, a positive one goes out in
/// the range that Automation hosts turn back into the number. Any other failure leaves none.
HRESULT ResultOfException() noexcept;

/// Runs a member; no C++ exception gets past it.
template <class Body>
HRESULT Guarded(const Body& Run) noexcept
{
    try {
        Run();
        return S_OK;
    } catch (...) {
        return ResultOfException();
    }
}

} // namespace acg
