// The component's objects, linked into this program: what they do without memory, and leave in it.
#include "boundary/AutomationEncoder.h"
#include "tests/boundary/Client.h"

#include <new>
#include <stdexcept>

constexpr wchar_t OwnKey[] = L"5EC12E7AB1E5"; // nothing else in this program reads like it
int FailAt = 0;                               ///< which allocation from here on fails, once; 0 for none
int FreedWithKey = 0;

void* operator new(size_t size)
{
    if (FailAt > 0 && --FailAt == 0) {
        throw std::bad_alloc();
    }
    return std::calloc(1, size);
}

#pragma GCC diagnostic ignored "-Wsized-deallocation" // the library's calls this one
void operator delete(void* block) noexcept
{
    const size_t bytes = block == nullptr ? 0 : _msize(block);
    const std::wstring_view contents(static_cast<wchar_t*>(block), bytes / sizeof(wchar_t));
    FreedWithKey += contents.find(OwnKey + 1, 0, 6) == std::wstring_view::npos ? 0 : 1;
    std::free(block);
}

namespace client
{

TEST(MemoryTest, EachFailedAllocationIsAResultAndNoKeyIsLeft)
{
    Ptr<_Encoder> encoder;
    acg::Create<acg::AutomationEncoder>(__uuidof(_Encoder), reinterpret_cast<void**>(&encoder));
    for (const Member& member : Members<_Encoder>()) {
        std::vector<_variant_t> arguments(member.Inputs, 1L);
        for (size_t at = 0; at < member.Inputs && member.Name != L"Parameters"; ++at) {
            arguments[at] = Plain(member.Types[at]) == VT_BSTR ? _variant_t(OwnKey) : _variant_t(1L);
        }
        bool hasFailed = member.Name != L"Configure"; // which waits for a person
        for (int allocation = 1; hasFailed; ++allocation) {
            encoder->ReOpenEncoder(); // an earlier call may have closed it
            Call call(Way::BySlot, *encoder, member, arguments);
            FailAt = allocation;
            call.Repeat();
            hasFailed = FailAt == 0;
            FailAt = 0;
            EXPECT_TRUE(!hasFailed || call.Result == E_OUTOFMEMORY || call.Result == -16)
                << testing::PrintToString(member.Name);
        }
    }
    EXPECT_EQ(FreedWithKey, 0);
}

TEST(ResultsTest, OnlyARaisedFailureLeavesErrorInformation)
{
    const auto raise = []() -> HRESULT { throw acg::RaisedFailure{453, L"no entry point", L""}; };
    Ptr<IErrorInfo> info;
    EXPECT_EQ(acg::Guarded(raise), HRESULT(0x800A01C5));
    EXPECT_EQ(acg::Guarded([] { return E_POINTER; }), E_POINTER);
    EXPECT_EQ(GetErrorInfo(0, &info), S_FALSE);
    acg::Guarded(raise);
    EXPECT_EQ(acg::Guarded([]() -> HRESULT { throw std::length_error("too long"); }), E_UNEXPECTED);
    EXPECT_EQ(GetErrorInfo(0, &info), S_FALSE);
}

} // namespace client
