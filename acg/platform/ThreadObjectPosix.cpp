#include "acg/platform/ThreadObject.h"

#include <new>
#include <pthread.h>

namespace acg
{

ThreadPointer::ThreadPointer() noexcept
{
    if (pthread_key_t key = 0; pthread_key_create(&key, nullptr) == 0) {
        m_key = key;
    }
}

ThreadPointer::~ThreadPointer()
{
    if (m_key) {
        pthread_key_delete(static_cast<pthread_key_t>(*m_key));
    }
}

void* ThreadPointer::Get() const
{
    return m_key ? pthread_getspecific(static_cast<pthread_key_t>(*m_key)) : nullptr;
}

void ThreadPointer::Set(void* pointer) const
{
    if (!m_key || pthread_setspecific(static_cast<pthread_key_t>(*m_key), pointer) != 0) {
        throw std::bad_alloc();
    }
}

} // namespace acg
