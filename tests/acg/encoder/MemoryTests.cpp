// What memory does to the component, and the component to memory: each allocation fails in turn, and no key
// is left in a block that is freed, under any fault either. A program of its own, as it replaces the
// allocation of the whole process.
#include "acg/forms/HeadlessPlayer.h"
#include "tests/acg/encoder/Operations.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <new>

extern "C" void __real_free(void* block);

namespace
{

int untilFailure = 0; ///< so many allocations of the component; the last of them fails

/// As text of any width: without its zeros wide text is narrow.
bool HoldsKey(std::string memory)
{
    std::erase(memory, '\0');
    std::ranges::transform(memory, memory.begin(), [](unsigned char c) { return std::tolower(c); });
    // A text that was emptied has lost its first digit.
    return memory.find("d1ce0f") != std::string::npos || memory.find("ce0fca57e5") != std::string::npos;
}

} // namespace

// The linker puts it in place of free, by which the byte strings of a reader library are freed.
extern "C" void __wrap_free(void* block)
{
    if (block != nullptr && acg::RunningCode::IsComponents) {
        const acg::RunningCode notOurs(/*OfComponent=*/false);
        acg::keysFreed += HoldsKey({static_cast<char*>(block), malloc_usable_size(block)}) ? 1 : 0;
    }
    __real_free(block);
}
void* operator new(size_t size)
{
    if (acg::RunningCode::IsComponents && untilFailure > 0) {
        --untilFailure;
        if (untilFailure == 0) {
            throw std::bad_alloc();
        }
    }
    void* const block = std::malloc(size);
    return std::memset(block, 'z', malloc_usable_size(block)); // nothing of a former owner's is left in it
}
void* operator new(size_t size, const std::nothrow_t& /*returns null*/) noexcept
{
    return std::malloc(size); // not the sanitizer's own: it would notice that the operator below frees it
}
void operator delete(void* block) noexcept
{
    __wrap_free(block);
}
void operator delete(void* block, size_t /*size*/) noexcept
{
    __wrap_free(block);
}

using namespace acg;

namespace
{

/// What asks the reader nothing.
const std::vector<Operation> OtherOperations = {
    {"Encoder", [](auto&, auto&) { return Encoder().LastError()->Number; }},
    {"GetInformation", [](auto& e, auto&) { return e.GetInformation().empty() ? 1 : 0; }},
    {"Parameters", [](auto& e, auto&) { return e.Parameters(e.Parameters() + L"0"), 0; }},
    {"Configure", [](auto& e, auto&) { return e.Configure(L"francais"); }},
};

/// An encoder that is made for one operation. That nothing leaks, the leak sanitizer says.
struct Life : FaultTest {
    void TestBody() override {}

    /// Lets that allocation of an operation fail. False if there are fewer.
    bool FailsAt(const Operation& operation, int allocation)
    {
        Prepare(operation);
        HostArguments host;
        bool isThrown = false;
        untilFailure = allocation;
        try {
            Run(operation, host);
        } catch (const std::bad_alloc&) {
            isThrown = true;
            EXPECT_TRUE(operation.Name != "OpenEncoder" || !EncoderInside::HasComm(encoder));
        }
        const bool hasFailed = std::exchange(untilFailure, 0) == 0 && allocation > 0;
        EXPECT_EQ(isThrown, hasFailed);
        ExpectCleanLife();
        return hasFailed;
    }
};

TEST(MemoryTest, EveryAllocationThatFailsReachesTheCaller)
{
    bool isTested = false;
    HeadlessPlayer() = [&isTested](Form& form) {
        isTested = static_cast<bool>(form.OnTimer); // that of the test dialog, in the other one
        isTested ? form.OnTimer() : form.Controls()[/*cmdTest*/ 13].Press();
        form.DefaultButton->Press();
    };
    std::vector<Operation> operations = Operations;
    operations.insert(operations.end(), OtherOperations.begin(), OtherOperations.end());
    int failed = 0;
    for (const Operation& operation : operations) {
        Life().FailsAt(operation, 0); // what lasts for the thread or the process is made
        for (int allocation = 1; Life().FailsAt(operation, allocation); ++allocation) {
            ++failed;
            ASSERT_FALSE(HasFailure()) << operation.Name << ' ' << allocation;
        }
    }
    EXPECT_TRUE(isTested);
    std::printf("%d allocations failed\n", failed);

    EXPECT_EQ(keysFreed, 0);
    const RunningCode component(/*OfComponent=*/true);
    delete new std::wstring(FaultKey); // so it would have been seen
    EXPECT_EQ(std::exchange(keysFreed, 0), 1);
}

} // namespace
