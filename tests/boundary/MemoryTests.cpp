// The component's objects without memory, linked into this program: each allocation of each member fails in
// turn.
#include "boundary/AutomationEncoder.h"
#include "tests/boundary/Client.h"

#include <cstdlib>
#include <new>
#include <string_view>

namespace
{

constexpr wchar_t OwnKey[] = L"5EC12E7AB1E5"; // nothing else in this program reads like it

bool IsInCall = false;
long Living = 0;
int FailAt = 0; ///< which allocation of a call from here on fails, once
int FreedWithKey = 0;

} // namespace

void* operator new(size_t size)
{
    if (IsInCall && --FailAt == 0) {
        throw std::bad_alloc();
    }
    ++Living;
    return std::calloc(1, size);
}

void operator delete(void* block) noexcept
{
    if (IsInCall && block != nullptr) {
        const std::wstring_view contents(static_cast<wchar_t*>(block), _msize(block) / sizeof(wchar_t));
        FreedWithKey += contents.find(OwnKey + 1, 0, 6) == std::wstring_view::npos ? 0 : 1;
    }
    Living -= block == nullptr ? 0 : 1;
    std::free(block);
}

void operator delete(void* block, size_t /*size*/) noexcept
{
    operator delete(block);
}

namespace client
{

namespace
{

/// Gives the number of allocations that failed.
int FailEachAllocation(IDispatch& object, const Member& member, _Encoder& encoder)
{
    for (int allocation = 1;; ++allocation) {
        encoder.ReOpenEncoder(); // an earlier call may have closed it
        std::vector<_variant_t> arguments(member.Inputs(), _variant_t(1L));
        for (size_t at = 0; at < arguments.size(); ++at) {
            if (Plain(member.Types[at]) == VT_BSTR && member.Name != L"Parameters") {
                arguments[at] = OwnKey;
            }
        }
        Call call(Way::BySlot, object, member, arguments);
        FailAt = allocation;
        IsInCall = true;
        const HRESULT result = call.Run();
        IsInCall = false;
        const bool hasFailed = FailAt <= 0;
        EXPECT_EQ(hasFailed, result == E_OUTOFMEMORY || (hasFailed && (result == -1 || result == -16)))
            << testing::PrintToString(member.Name) << result;
        if (!hasFailed) {
            return allocation - 1;
        }
    }
}

TEST(MemoryTest, LeavesNothingBehindWhateverAllocationFails)
{
    long living[2] = {};
    int failed = 0;
    for (long& after : living) { // in the first round the runtime makes what it keeps
        ComPtr<_Encoder> encoder;
        ASSERT_EQ(acg::Create<acg::AutomationEncoder>(__uuidof(_Encoder),
                                                      reinterpret_cast<void**>(encoder.GetAddressOf())),
                  S_OK);
        Open(*encoder.Get(), 0x2000);
        for (const Member& member : Members<_Encoder>()) {
            if (member.Name != L"Configure") {
                failed += FailEachAllocation(*encoder.Get(), member, *encoder.Get());
            }
        }
        for (const Member& member : Members<_CError>()) {
            failed += FailEachAllocation(*RecordOf(*encoder.Get()).Get(), member, *encoder.Get());
        }
        encoder->ReOpenEncoder();
        EXPECT_EQ(LONG{Make(Way::BySlot, *encoder.Get(), L"ReadSerialNumber", {L""}).Value}, sceSuccess);
        encoder.Reset();
        after = Living;
    }
    EXPECT_EQ(living[0], living[1]);
    EXPECT_EQ(FreedWithKey, 0);
    std::printf("%d allocations failed\n", failed);
}

} // namespace

} // namespace client
