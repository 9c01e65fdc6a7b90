// A lock, as the standard library's std::mutex.
#pragma once

#ifdef _WIN32
#include <windows.h>
#else
#include <mutex>
#endif

namespace acg
{

#ifdef _WIN32 // the variant of the compiler without a thread library has no std::mutex
class Mutex
{
public:
    void lock() { AcquireSRWLockExclusive(&m_lock); }
    bool try_lock() { return TryAcquireSRWLockExclusive(&m_lock) != 0; }
    void unlock() { ReleaseSRWLockExclusive(&m_lock); }

private:
    SRWLOCK m_lock = SRWLOCK_INIT;
};
#else
using Mutex = std::mutex;
#endif

} // namespace acg
