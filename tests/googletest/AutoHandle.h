// Included before GoogleTest's own sources for Windows: up to version 1.12 they lack this class of theirs
// without threads, by which alone its death tests are written. No test of ours is one. Later versions have
// theirs in the namespace inside this one, where it comes first.
#pragma once

namespace testing
{

class AutoHandle
{
public:
    explicit AutoHandle(void* Handle = nullptr) : m_handle(Handle) {}
    void Reset(void* Handle = nullptr) { m_handle = Handle; }
    [[nodiscard]] void* Get() const { return m_handle; }

private:
    void* m_handle;
};

} // namespace testing
