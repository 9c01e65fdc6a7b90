#include "acg/platform/ThreadObject.h"

#include <new>
#include <windows.h>

namespace acg
{

ThreadPointer::ThreadPointer() noexcept
{
    if (const DWORD index = TlsAlloc(); index != TLS_OUT_OF_INDEXES) {
        m_key = index;
    }
}

ThreadPointer::~ThreadPointer()
{
    if (m_key) {
        TlsFree(*m_key);
    }
}

void* ThreadPointer::Get() const
{
    return m_key ? TlsGetValue(*m_key) : nullptr;
}

void ThreadPointer::Set(void* pointer) const
{
    if (!m_key || TlsSetValue(*m_key, pointer) == FALSE) {
        throw std::bad_alloc();
    }
}

} // namespace acg
