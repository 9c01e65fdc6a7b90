// What memory does to the component, and the component to memory: each allocation fails in turn, and no key
// is left in a block that is freed. A program of its own, as it replaces the allocation of the whole process.
#include "platform/HeadlessPlayer.h"
#include "tests/encoder/Operations.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <new>

extern "C" void* __real_malloc(size_t size); // NOLINT(bugprone-reserved-identifier)
extern "C" void __real_free(void* block);    // NOLINT(bugprone-reserved-identifier)

namespace
{

int liveBlocks = 0;
int untilFailure = 0;  ///< so many allocations; the last of them fails
bool isThrown = false; ///< by the one that failed
int keysFreed = 0;

/// As text of any width: without its zeros wide text is narrow.
bool HoldsKey(std::string memory)
{
    std::erase(memory, '\0');
    std::ranges::transform(memory, memory.begin(), [](unsigned char c) { return std::tolower(c); });
    constexpr std::string_view Key = "d1ce0fca57e5";
    constexpr size_t Part = 6; // a text that was emptied has lost its first digit
    for (size_t at = 0; at + Part <= Key.size(); ++at) {
        if (memory.find(Key.substr(at, Part)) != std::string::npos) {
            return true;
        }
    }
    return false;
}

bool IsToFail()
{
    return untilFailure > 0 && --untilFailure == 0;
}

void* Allocate(size_t size)
{
    void* const block = __real_malloc(size);
    std::memset(block, 'z', malloc_usable_size(block)); // nothing of a former owner's is left in it
    ++liveBlocks;
    return block;
}

void Free(void* block)
{
    if (block != nullptr) {
        if (acg::Turn::IsComponents) {
            const acg::Turn notOurs(/*OfComponent=*/false);
            keysFreed += HoldsKey({static_cast<char*>(block), malloc_usable_size(block)}) ? 1 : 0;
        }
        --liveBlocks;
        __real_free(block);
    }
}

} // namespace

// The linker puts these in place of malloc and free: the byte strings of a reader library come from there.
extern "C" void* __wrap_malloc(size_t size) // NOLINT(bugprone-reserved-identifier)
{
    return IsToFail() ? nullptr : Allocate(size);
}
extern "C" void __wrap_free(void* block) // NOLINT(bugprone-reserved-identifier)
{
    Free(block);
}
void* operator new(size_t size)
{
    if (acg::Turn::IsComponents && IsToFail()) {
        isThrown = true;
        throw std::bad_alloc();
    }
    return Allocate(size);
}
void operator delete(void* block) noexcept
{
    Free(block);
}
void operator delete(void* block, size_t /*size*/) noexcept
{
    Free(block);
}

namespace acg
{

namespace
{

struct Life : FaultTest {
    Life() { keysFreed = 0; }
    void TestBody() override {}

    /// True if it came to that allocation.
    bool FailsAt(const Operation& operation, int allocation)
    {
        Prepare(operation);
        HostArguments host;
        untilFailure = allocation;
        isThrown = false;
        try {
            Run(operation, host);
            EXPECT_FALSE(isThrown);
        } catch (const std::bad_alloc&) {
            EXPECT_TRUE(isThrown);
            EXPECT_TRUE(operation.Name != L"OpenEncoder" || EncoderInside::Comm(encoder) == 0);
        }
        const bool came = std::exchange(untilFailure, 0) == 0;
        ExpectCleanLife();
        return came;
    }
};

/// What asks the reader nothing.
const std::vector<Operation> OtherOperations = {
    {L"Encoder", "", [](auto&, auto&) { return Encoder().LastError()->Number; }},
    {L"GetInformation", "", [](auto& e, auto&) { return e.GetInformation().empty() ? 1 : 0; }},
    {L"Parameters", "", [](auto& e, auto&) { return e.Parameters(e.Parameters() + L"0"), 0; }},
    {L"Configure", "", [](auto& e, auto&) { return e.Configure(L"francais"); }},
};

TEST(MemoryTest, EveryAllocationThatFailsReachesTheCallerAndNothingLeaks)
{
    bool isTested = false;
    HeadlessPlayer() = [&isTested](Form& form) {
        isTested = static_cast<bool>(form.OnTimer); // that of the test dialog, in the other one
        isTested ? form.OnTimer() : form.Named("cmdTest").Press();
        form.Named("cmdOK").Press();
    };
    std::vector<Operation> operations = Operations;
    operations.insert(operations.end(), OtherOperations.begin(), OtherOperations.end());
    int failed = 0;
    for (const Operation& operation : operations) {
        Life().FailsAt(operation, 0); // what lasts for the thread or the process is made
        bool came = true;
        for (int allocation = 1; came; ++allocation) {
            SCOPED_TRACE(testing::PrintToString(operation.Name) + std::to_string(allocation));
            const int before = liveBlocks;
            came = Life().FailsAt(operation, allocation);
            EXPECT_EQ(liveBlocks, before);
            EXPECT_EQ(keysFreed, 0);
            failed += came ? 1 : 0;
        }
    }
    EXPECT_TRUE(isTested);
    std::printf("%d allocations failed\n", failed);
}

TEST_F(FaultTest, LeavesNoKeyInFreedMemoryAndPrintsNothing)
{
    keysFreed = 0;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const Operation& operation : Operations) {
        Prepare(operation);
        HostArguments host;
        Run(operation, host);
        for (const ScriptedReader::Fault& fault : FaultsOf(std::vector(reader.Calls))) {
            Prepare(operation);
            reader.Injected = fault;
            Run(operation, host);
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout().size() + testing::internal::GetCapturedStderr().size(),
              0U);
    EXPECT_EQ(keysFreed, 0);

    const Turn component(/*OfComponent=*/true);
    delete new std::wstring(FaultKey); // so it would have been seen
    EXPECT_EQ(keysFreed, 1);
}

} // namespace
} // namespace acg
