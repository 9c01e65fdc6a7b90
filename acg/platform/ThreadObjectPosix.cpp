#include "acg/platform/ThreadObject.h"

#include <new>
#include <pthread.h>

namespace acg
{

ThreadPointer::ThreadPointer() noexcept
{
    pthread_key_t key = 0;
    if (pthread_key_create(&key, nullptr) == 0) {
        m_key = key;
    }
}

ThreadPointer::~ThreadPointer()
{
    pthread_key_delete(static_cast<pthread_key_t>(m_key));
}

void* ThreadPointer::Get() const
{
    return pthread_getspecific(static_cast<pthread_key_t>(m_key));
}

void ThreadPointer::Set(void* pointer) const
{
    if (pthread_setspecific(static_cast<pthread_key_t>(m_key), pointer) != 0) {
        throw std::bad_alloc();
    }
}

} // namespace acg
