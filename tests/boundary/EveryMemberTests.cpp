// What holds for every member of the component alike: null pointers, a script's variables, memory, keys.
#include "tests/boundary/Client.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // interfaces have no destructor

namespace client
{

namespace
{

// The key of every call. Nothing else in this program reads like it.
constexpr wchar_t OwnKey[] = L"5EC12E7AB1E5";
constexpr char OwnKeyNarrow[] = "5EC12E7AB1E5";

/// An argument that fits its type, and its variable.
template <class Formal>
struct Argument {
    Formal Value = static_cast<Formal>(1);
    Formal Give() { return Value; }
};
template <class Variable>
struct Argument<Variable*> {
    Variable Value = static_cast<Variable>(1);
    Variable* Give() { return &Value; }
};
template <>
struct Argument<BSTR> {
    Text Value{OwnKey};
    BSTR Give() { return Value; }
};
template <>
struct Argument<BSTR*> {
    Text Value{L"5EC12E7AB1E5FF0780695EC12E7AB1E5"}; // as a trailer has it, with keys
    BSTR* Give() { return Value.Variable(); }
};
template <>
struct Argument<VARIANT*> {
    Variant Value{L"105"};
    VARIANT* Give() { return &Value; }
};
template <>
struct Argument<_CError**> {
    ComPtr<_CError> Value;
    _CError** Give() { return Value.ReleaseAndGetAddressOf(); }
};

/// One call of a member, and what it needs.
template <class Interface, class... Formal>
class Call
{
public:
    explicit Call(const Member<Interface, Formal...>& member) : m_member(member)
    {
        if constexpr (std::is_same_v<std::tuple<Formal...>, std::tuple<BSTR>>) {
            std::get<0>(m_arguments).Value.Set(L"no key");
        } else if constexpr (GivesText) {
            std::get<0>(m_arguments).Value.Set(nullptr);
        }
    }

    /// As its result, for which there is no text before the call.
    static constexpr bool GivesText = sizeof...(Formal) == 1 && (std::is_same_v<Formal, BSTR*> && ...);

    Outcome operator()(Way way, Interface& object)
    {
        return std::apply([&](auto&... one) { return m_member(way, object, one.Give()...); }, m_arguments);
    }

    /// False where it gave a result code that isn't sceSuccess.
    [[nodiscard]] bool Succeeded() const
    {
        if constexpr (sizeof...(Formal) > 1 && (std::is_same_v<Formal, sceReturnCode*> || ...)) {
            return std::get<sizeof...(Formal) - 1>(m_arguments).Value == sceSuccess;
        }
        return true;
    }

    /// Its arguments as a caller by name gives them, in reverse order, without the variable of the result.
    std::vector<VARIANTARG> Typed()
    {
        std::vector<VARIANTARG> arguments;
        std::apply([&](auto&... one) { (arguments.push_back(AsVariant<Formal>(one.Give())), ...); },
                   m_arguments);
        arguments.pop_back();
        std::reverse(arguments.begin(), arguments.end());
        return arguments;
    }

    /// Calls it with each pointer in turn being null: the variables of numbers stay as they are. A text, and
    /// a variant, may be null.
    void RefusesNull(Interface& object)
    {
        for (size_t nullAt = 0; nullAt < sizeof...(Formal); ++nullAt) {
            size_t at = 0;
            bool isRefused = false;
            const auto give = [&]<class One>(Argument<One>& argument) {
                if constexpr (std::is_pointer_v<One> && !std::is_same_v<One, BSTR> &&
                              !std::is_same_v<One, VARIANT*>) {
                    if (at++ == nullAt) {
                        isRefused = true;
                        return One{};
                    }
                } else {
                    ++at;
                }
                return argument.Give();
            };
            const auto given =
                std::apply([&](auto&... one) { return std::tuple<Formal...>{give(one)...}; }, m_arguments);
            const HRESULT result =
                std::apply([&](Formal... one) { return (object.*m_member.Slot)(one...); }, given);
            EXPECT_EQ(result == E_POINTER, isRefused) << "without argument " << nullAt;
        }
    }

private:
    const Member<Interface, Formal...>& m_member;
    std::tuple<Argument<Formal>...> m_arguments;
};

/// Every member of both objects. The body: (object, member).
template <class Body>
void ForEveryMember(_Encoder& encoder, const Body& body)
{
    const auto named = [&](auto& object, const auto& member) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(member.Name)));
        body(object, member);
    };
    const auto onRecord = [&](const auto& field) {
        const ComPtr<_CError> record = RecordOf(encoder);
        named(*record.Get(), field.second);
        named(*record.Get(), field.first);
    };
    ForEach(EncoderMembers, [&](const auto& member) { named(encoder, member); });
    ForEach(NumberFields, onRecord);
    ForEach(TextFields, onRecord);
}

TEST(EveryMemberTest, RefusesNullInPlaceOfAVariable)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    ForEveryMember(*encoder.Get(),
                   [](auto& object, const auto& member) { Call(member).RefusesNull(object); });
    encoder->ReOpenEncoder();
    EXPECT_EQ(encoder->Configure(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(FunctionOf(*RecordOf(*encoder.Get()).Get()), L"OpenEncoder"); // no other operation has begun
}

TEST(EveryMemberTest, ConvertsAScriptsVariableOrRefusesIt)
{
    const ComPtr<_Encoder> encoder = NewEncoder(); // closed: operations come to their end with sceError
    const ComPtr<_CError> record = RecordOf(*encoder.Get());
    int variables = 0;
    ForEach(EncoderMembers, [&](const auto& member) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(member.Name)));
        if (member.Kind != Method) {
            return;
        }
        Call call(member);
        std::vector<VARIANTARG> typed = call.Typed();
        for (UINT at = 0; at < typed.size(); ++at) {
            if (V_VT(&typed[at]) == VariantReference) {
                continue;
            }
            const bool isVariable = V_ISBYREF(&typed[at]);
            const auto declared = static_cast<VARTYPE>(V_VT(&typed[at]) & ~VT_BYREF);
            variables += isVariable ? 1 : 0;
            Variant right;
            EXPECT_EQ(VariantCopyInd(&right, &typed[at]), S_OK);
            Variant empty;
            Variant convertible(1.0);
            Variant wrong(VT_NULL);
            for (Variant* content : {&right, &empty, &convertible, &wrong}) {
                const bool converts = content != &wrong;
                const VARTYPE before = V_VT(content);
                EXPECT_EQ(record->put_ComFunction(nullptr), S_OK);
                std::vector<VARIANTARG> given = typed;
                given[at] = AsVariant<VARIANT*>(content);
                Variant result;
                UINT bad = MAXUINT;
                const Outcome outcome = Invoke(*encoder.Get(), member.Name, Method, given.data(),
                                               static_cast<UINT>(given.size()), &result, &bad);
                EXPECT_EQ(outcome.Result, converts ? S_OK : DISP_E_TYPEMISMATCH);
                EXPECT_EQ(bad, converts ? MAXUINT : at);
                EXPECT_EQ(FunctionOf(*record.Get()), converts ? member.Name : L"");
                EXPECT_EQ(V_VT(content), isVariable && converts ? declared : before);
            }
        }
    });
    EXPECT_EQ(variables, 13);
}

TEST(EveryMemberTest, TakesArgumentsByTheirNamesAndFollowsReferences)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"ReadDataBloc"), const_cast<LPOLESTR>(L"BlocContents"),
                        const_cast<LPOLESTR>(L"KeyType")};
    DISPID ids[3] = {};
    ASSERT_EQ(encoder->GetIDsOfNames(IID{}, names, 3, LOCALE_USER_DEFAULT, ids), S_OK);
    Text key{OwnKey};
    VARIANTARG given[] = {{}, AsVariant<LONG>(1), AsVariant<BSTR*>(key.Variable()), AsVariant<LONG>(4)};
    DISPPARAMS arguments{.rgvarg = given, .rgdispidNamedArgs = ids + 1, .cArgs = 4, .cNamedArgs = 2};
    const auto call = [&](VARIANT& contents) {
        given[0] = AsVariant<VARIANT*>(&contents);
        Variant result;
        return encoder->Invoke(ids[0], IID{}, LOCALE_USER_DEFAULT, Method, &arguments, &result, nullptr,
                               nullptr);
    };
    // The encoder is closed, so contents stay, but for their type.
    Variant variable(12.0);
    VARIANT toVariable = AsVariant<VARIANT*>(&variable);
    EXPECT_EQ(call(toVariable), S_OK);
    ASSERT_EQ(V_VT(&variable), VT_BSTR);
    EXPECT_EQ(std::wstring(V_BSTR(&variable)), L"12");
    Text text(L"typed");
    VARIANT toText = AsVariant<BSTR*>(text.Variable());
    EXPECT_EQ(call(toText), S_OK);
    EXPECT_EQ(V_VT(&toText), VT_BYREF | VT_BSTR);
    EXPECT_EQ(text.Characters(), L"typed");

    V_BYREF(&given[2]) = nullptr;
    EXPECT_EQ(call(toText), E_POINTER);
    arguments.rgvarg = nullptr;
    EXPECT_EQ(call(toText), E_INVALIDARG);
}

/// Sees, while it stands, the memory of the component's own code, and every block of the system's allocator,
/// in which texts lie. One at a time.
class Memory final : public IMallocSpy
{
public:
    Memory()
    {
        current = this;
        Redirect("malloc", &Make);
        Redirect("free", &Free);
        // The system keeps freed texts for itself, unless it is told not to.
        const auto setNoCache = reinterpret_cast<void (*)()>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), "SetOaNoCache")));
        setNoCache();
        EXPECT_EQ(CoRegisterMallocSpy(this), S_OK);
    }
    ~Memory()
    {
        EXPECT_EQ(CoRevokeMallocSpy(), S_OK);
        for (const auto& [place, before] : m_redirected) {
            *place = before;
        }
        current = nullptr;
    }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    std::map<void*, SIZE_T> Own;   ///< made by the component since this stands, and not freed
    std::map<void*, SIZE_T> Texts; ///< and by the system's allocator
    int FailOwn = 0;               ///< which allocation of the component's from here on fails, once
    int FailText = 0;              ///< which of the system's

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override
    {
        *object = wanted == __uuidof(IUnknown) || wanted == __uuidof(IMallocSpy) ? this : nullptr;
        return *object != nullptr ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override
    {
        m_size = size;
        return InCall && --FailText == 0 ? 0 : size;
    }
    void* STDMETHODCALLTYPE PostAlloc(void* block) override
    {
        if (block != nullptr) {
            std::memset(block, 'z', m_size);
            Texts[block] = m_size;
        }
        return block;
    }
    void* STDMETHODCALLTYPE PreFree(void* block, BOOL /*spied*/) override
    {
        EXPECT_TRUE(block == nullptr || Texts.count(block) == 1) << "freed twice, or not ours";
        Forget(Texts, block);
        return block;
    }
    void STDMETHODCALLTYPE PostFree(BOOL /*spied*/) override {}
    SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** realBlock, BOOL /*spied*/) override
    {
        *realBlock = block;
        Texts.erase(block);
        return m_size = size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL /*spied*/) override
    {
        Texts[block] = m_size;
        return block;
    }
    void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL /*spied*/) override { return block; }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL /*spied*/) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL /*spied*/) override { return block; }
    int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL /*spied*/, int result) override { return result; }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}

private:
    static void* Make(size_t size)
    {
        void* const block = InCall && --current->FailOwn == 0 ? nullptr : std::malloc(size);
        if (block != nullptr) {
            std::memset(block, 'z', size); // nothing of a former owner's is left in it
            current->Own[block] = size;
        }
        return block;
    }
    static void Free(void* block)
    {
        Forget(current->Own, block);
        std::free(block);
    }

    /// Nothing that the component gives up holds the key.
    static void Forget(std::map<void*, SIZE_T>& live, void* block)
    {
        const auto found = live.find(block);
        if (found == live.end()) {
            return;
        }
        if (InCall) {
            std::string contents(static_cast<const char*>(block), found->second);
            std::erase(contents, '\0'); // so wide text is narrow
            constexpr size_t part = 6;  // a text that was emptied has lost its first digit
            for (size_t at = 0; at + part < sizeof(OwnKeyNarrow); ++at) {
                EXPECT_EQ(contents.find(OwnKeyNarrow + at, 0, part), std::string::npos)
                    << "freed with a part of the key in it";
            }
        }
        live.erase(found);
    }

    /// Has the component call a function of ours in place of one that it imports.
    template <class Function>
    void Redirect(const char* name, Function* with)
    {
        auto* const base = reinterpret_cast<std::byte*>(GetModuleHandleW(L"ACG_MultiISO_TV.dll"));
        ASSERT_NE(base, nullptr);
        const auto& dos = *reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos.e_lfanew);
        const auto& imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
        auto* const first = reinterpret_cast<void**>(base + imports.VirtualAddress);
        auto* const last = first + imports.Size / sizeof(void*);
        auto* const place = std::find(
            first, last, reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), name)));
        ASSERT_NE(place, last);
        DWORD before = 0;
        VirtualProtect(place, sizeof(void*), PAGE_READWRITE, &before);
        m_redirected.emplace_back(place, *place);
        *place = reinterpret_cast<void*>(with);
    }

    static inline Memory* current = nullptr;
    std::vector<std::pair<void**, void*>> m_redirected;
    SIZE_T m_size = 0;
};

/// Opens, and gives both of the sectors that the calls touch the key of the calls.
void OpenWithOwnKey(_Encoder& encoder, LONG card)
{
    Open(encoder, card);
    for (const LONG sector : {0, 1}) {
        sceReturnCode result{};
        EXPECT_EQ(encoder.WriteSectorTrailer(sector, Text(FactoryKey), 1, Text(OwnKey), Text(OwnKey), 1,
                                             scbs_A_ReadWrite, scbs_A_ReadWrite, scbs_A_ReadWrite,
                                             scss_A_WriteKeysConditions, nullptr, &result),
                  S_OK);
        EXPECT_EQ(result, sceSuccess);
    }
}

bool IsRaised(HRESULT result)
{
    return result == -1 || result == -16;
}

/// Has an encoder made, every member called and the encoder let go of, each allocation in turn failing once.
/// Gives the number of those that failed.
int FailEachAllocation(Memory& memory, Way way, LONG card)
{
    int failed = -1;
    ComPtr<_Encoder> encoder;
    for (HRESULT made = E_OUTOFMEMORY; made == E_OUTOFMEMORY; ++failed) {
        memory.FailOwn = failed + 2;
        InCall = true;
        made = CoCreateInstance(__uuidof(Encoder), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_Encoder),
                                reinterpret_cast<void**>(encoder.GetAddressOf()));
        InCall = false;
    }
    EXPECT_NE(encoder.Get(), nullptr);
    Open(*encoder.Get(), card);
    for (IDispatch* object :
         std::initializer_list<IDispatch*>{encoder.Get(), RecordOf(*encoder.Get()).Get()}) {
        EXPECT_NE(Invoke(*object, L"none", Get, nullptr, 0, nullptr).Result,
                  S_OK); // it now has its type library
    }
    const auto failEach = [&](auto& object, const auto& member) {
        for (int* const countdown : {&memory.FailOwn, &memory.FailText}) {
            if (way != Way::BySlot && countdown == &memory.FailText) {
                continue; // the system's own call by name may not bear it
            }
            bool hasFailed = true;
            for (int allocation = 1; hasFailed; ++allocation) {
                encoder->ReOpenEncoder(); // an earlier call may have closed it
                SetErrorInfo(0, nullptr);
                Call call(member);
                const size_t given = memory.Texts.size();
                *countdown = allocation;
                const HRESULT result = call(way, object).Result;
                hasFailed = std::exchange(*countdown, 0) <= 0;
                SetErrorInfo(0, nullptr);
                EXPECT_EQ(memory.Texts.size(), given + (call.GivesText && SUCCEEDED(result) ? 1 : 0));
                // A text of the reader that couldn't be made is an empty one, and no failed call.
                EXPECT_TRUE(result == E_OUTOFMEMORY || IsRaised(result) || !hasFailed ||
                            countdown == &memory.FailText)
                    << result;
                // OpenEncoder is refused, as it isn't given the number; ReOpenEncoder opens.
                EXPECT_TRUE(hasFailed || call.Succeeded() || member.Name == std::wstring(OpenEncoder.Name));
                failed += hasFailed ? 1 : 0;
            }
        }
    };
    ForEveryMember(*encoder.Get(), failEach);
    failEach(*encoder.Get(), ReOpenEncoder);
    encoder->ReOpenEncoder();
    Text contents;
    sceReturnCode result{};
    EXPECT_EQ(encoder->ReadDataBloc(1, Text(OwnKey), 1, contents.Variable(), &result), S_OK);
    EXPECT_EQ(result, sceSuccess);
    return failed;
}

class EveryWayTest : public testing::TestWithParam<Way>
{
};
INSTANTIATE_TEST_SUITE_P(Ways, EveryWayTest, testing::Values(Way::BySlot, Way::AsScript),
                         [](const auto& way) { return way.param == Way::BySlot ? "BySlot" : "AsScript"; });

TEST_P(EveryWayTest, LeavesNothingBehindWhateverAllocationFails)
{
    const Way way = GetParam();
    const LONG card = 0x1000 + static_cast<LONG>(way);
    {
        const ComPtr<_Encoder> first = NewEncoder(); // what is made once for the process is made
        OpenWithOwnKey(*first.Get(), card);
        LONG length = 0;
        EXPECT_EQ(SerialNumberLength(Way::ByName, *first.Get(), &length).Result, -16);
    }
    Memory memory;
    int failed = 0;
    size_t kept = 0;
    for (const bool isFirst : {true, false}) {
        failed += FailEachAllocation(memory, way, card);
        // In the first round the runtime makes what it keeps for a throw without memory.
        kept = isFirst ? memory.Own.size() : kept;
    }
    EXPECT_EQ(memory.Own.size(), kept);
    std::printf("%d allocations failed\n", failed);
}

void CALLBACK CancelDialog(HWND /*window*/, UINT /*message*/, UINT_PTR /*timer*/, DWORD /*time*/)
{
    PostMessageW(FindWindowW(nullptr, L"ACG Encoder Configuration"), WM_COMMAND, IDCANCEL, 0);
}

TEST(EveryMemberTest, ConfigureLeavesNothingBehindWhateverAllocationFails)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &CancelDialog);
    Memory memory;
    const Text language(L"english");
    int failed = 0;
    size_t kept = 0;
    for (const bool isFirst : {true, false}) {
        bool hasFailed = true;
        for (int allocation = 1; hasFailed; ++allocation) {
            sceReturnCode result = sceError;
            memory.FailOwn = allocation;
            InCall = true;
            const HRESULT called = encoder->Configure(language, &result);
            InCall = false;
            hasFailed = std::exchange(memory.FailOwn, 0) <= 0;
            EXPECT_EQ(called, hasFailed ? E_OUTOFMEMORY : S_OK) << allocation;
            EXPECT_EQ(result, hasFailed ? sceSuccess : sceCanceled);
            failed += hasFailed ? 1 : 0;
        }
        kept = isFirst ? memory.Own.size() : kept; // the dialog of the thread, and what the runtime keeps
    }
    EXPECT_EQ(memory.Own.size(), kept);
    std::printf("%d allocations failed\n", failed);
    KillTimer(nullptr, timer);
}

} // namespace

} // namespace client
