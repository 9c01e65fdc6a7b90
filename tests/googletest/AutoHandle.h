// Without threads, GoogleTest up to 1.12 lacks this class on Windows, which only its death tests use; no test
// here is one. Later versions have their own in testing::internal, which is found first.
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
