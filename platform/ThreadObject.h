// An object of which each thread has its own.
#pragma once

#include <memory>

namespace acg
{

/// A pointer of which each thread has its own, null at first. It is the system's own storage: what compilers
/// make of thread_local ends the process where its memory can't be had.
class ThreadPointer
{
public:
    ThreadPointer() noexcept;
    ~ThreadPointer();
    ThreadPointer(const ThreadPointer&) = delete;
    ThreadPointer& operator=(const ThreadPointer&) = delete;

    [[nodiscard]] void* Get() const;
    void Set(void* Pointer) const; ///< throws std::bad_alloc, always where the system gave no storage

private:
    unsigned long m_key = ~0UL; ///< the system gives none like it
};

/// Made when a thread first asks for it, and never destroyed: the component may have been unloaded when the
/// thread ends.
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
