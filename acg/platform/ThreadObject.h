// Thread-local objects.
#pragma once

#include <memory>

namespace acg
{

/// A thread-local pointer, null at first, in the system's own thread storage: a compiler's thread_local ends
/// the process if its memory can't be allocated.
class ThreadPointer
{
public:
    ThreadPointer() noexcept;
    ~ThreadPointer();
    ThreadPointer(const ThreadPointer&) = delete;
    ThreadPointer& operator=(const ThreadPointer&) = delete;

    [[nodiscard]] void* Get() const;
    void Set(void* pointer) const; ///< throws std::bad_alloc, always if the system had no storage left

private:
    unsigned long m_key = ~0UL; ///< no valid key has this value
};

/// One object for each thread, created at its first Get and never destroyed: the component may have been
/// unloaded when the thread ends.
template <class Object>
class ThreadObject
{
public:
    [[nodiscard]] Object& Get() const
    {
        if (void* const made = m_pointer.Get()) {
            return *static_cast<Object*>(made);
        }
        auto object = std::make_unique<Object>();
        m_pointer.Set(object.get());
        return *object.release();
    }

private:
    ThreadPointer m_pointer;
};

} // namespace acg
