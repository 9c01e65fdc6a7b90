// Included before GoogleTest's own sources for Windows: without threads they lack this class of theirs, by
// which alone its death tests are written. No test of ours is one.
#pragma once

namespace testing::internal
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

} // namespace testing::internal
