// The component's objects, linked into this program: what they do without memory, and leave in it.
#include "acg/boundary/Classes.h"
#include "tests/acg/boundary/Client.h"

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

bool IsComponents = false; ///< the component is running, and not its client

void Look(const void* block, size_t bytes)
{
    const std::wstring_view contents(static_cast<const wchar_t*>(block), bytes / sizeof(wchar_t));
    FreedWithKey += IsComponents && contents.find(OwnKey + 1, 0, 6) != std::wstring_view::npos ? 1 : 0;
}

#pragma GCC diagnostic ignored "-Wsized-deallocation" // the library's calls this one
void operator delete(void* block) noexcept
{
    Look(block, block == nullptr ? 0 : _msize(block));
    std::free(block);
}

// The system's allocator, by which it frees texts and variants, its own copies too.
using SystemFree = void STDMETHODCALLTYPE (*)(IMalloc*, void*);
SystemFree FreeOfSystem = nullptr;

void STDMETHODCALLTYPE LookAndFree(IMalloc* allocator, void* block)
{
    Look(block, block == nullptr ? 0 : allocator->GetSize(block));
    FreeOfSystem(allocator, block);
}

extern "C" void SetOaNoCache(); // the headers lack it

void WatchTheSystem()
{
    constexpr int inTable = 5; // the place of Free in the interface
    IMalloc* allocator = nullptr;
    CoGetMalloc(1, &allocator);
    SystemFree* const entry = *reinterpret_cast<SystemFree**>(allocator) + inTable;
    DWORD protection = 0;
    VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
    FreeOfSystem = std::exchange(*entry, LookAndFree);
    SetOaNoCache(); // else a freed text waits for the next one that is as long
}

namespace client
{

TEST(MemoryTest, EachFailedAllocationIsAResultAndNoKeyIsLeft)
{
    Ptr<_Encoder> encoder;
    acg::Create<acg::AutomationEncoder>(__uuidof(_Encoder), reinterpret_cast<void**>(&encoder));
    WatchTheSystem();
    for (const Member& member : Members<_Encoder>()) {
        std::vector<_variant_t> arguments(member.Inputs, 1L);
        for (size_t at = 0; at < member.Inputs && member.Name != L"Parameters"; ++at) {
            arguments[at] = Plain(member.Types[at]) == VT_BSTR ? _variant_t(OwnKey) : _variant_t(1L);
        }
        for (const Way way : {Way::BySlot, Way::AsScript}) {
            bool hasFailed = member.Name != L"Configure"; // which waits for a person
            for (int allocation = 1; hasFailed; ++allocation) {
                encoder->ReOpenEncoder(); // an earlier call may have closed it
                Call call(way, *encoder, member, arguments);
                IsComponents = true;
                FailAt = allocation;
                call.Repeat();
                IsComponents = false;
                hasFailed = FailAt == 0;
                FailAt = 0;
                EXPECT_TRUE(call.Result == (hasFailed ? E_OUTOFMEMORY : S_OK) || call.Result == -16)
                    << testing::PrintToString(member.Name);
            }
        }
    }
    EXPECT_EQ(FreedWithKey, 0);
    IsComponents = true;
    delete new std::wstring(OwnKey); // so they would have been seen
    SysFreeString(SysAllocString(OwnKey));
    EXPECT_EQ(FreedWithKey, 2);
    IsComponents = false;
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
