#include "acg/platform/ThreadObject.h"

#include <new>
#include <windows.h>

namespace acg
{

ThreadPointer::ThreadPointer() noexcept : m_key(TlsAlloc()) {}

ThreadPointer::~ThreadPointer()
{
    TlsFree(m_key);
}

void* ThreadPointer::Get() const
{
    return TlsGetValue(m_key);
}

void ThreadPointer::Set(void* Pointer) const
{
    if (TlsSetValue(m_key, Pointer) == FALSE) {
        throw std::bad_alloc();
    }
}

} // namespace acg
