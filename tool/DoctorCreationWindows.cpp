#include "tool/DoctorWindows.h"

#include "tool/Failures.h"
#include "tool/Text.h"

#include <ACG_MultiISO_TV.h>
#include <array>
#include <wrl/client.h>

namespace acg::tool
{

namespace
{

/// A thread's own function; result: of the creation.
DWORD WINAPI CreateForSurrogate(void* result)
{
    const Apartment apartment(COINIT_MULTITHREADED);
    *static_cast<HRESULT*>(result) = CreateEncoder(CLSCTX_LOCAL_SERVER).Result;
    return 0;
}

} // namespace

Creation CreateEncoder(DWORD context)
{
    Microsoft::WRL::ComPtr<IDispatch> object;
    HRESULT result =
        CoCreateInstance(__uuidof(::Encoder), nullptr, context, IID_PPV_ARGS(object.GetAddressOf()));
    if (FAILED(result)) {
        return {result, {}};
    }
    // A call by name leads through the type library that the component carries.
    wchar_t name[] = L"EncoderState";
    wchar_t* names = name;
    DISPID id = 0;
    result = object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &id);
    if (SUCCEEDED(result)) {
        DISPPARAMS none = {};
        VARIANT state = {};
        result = object->Invoke(id, IID_NULL, LOCALE_NEUTRAL, DISPATCH_PROPERTYGET, &none, &state, nullptr,
                                nullptr);
    }
    if (FAILED(result) || context != CLSCTX_INPROC_SERVER) {
        return {result, {}};
    }
    return {result, LibraryOf(**reinterpret_cast<EntryPoint::Function**>(object.Get()))};
}

std::optional<HRESULT> CreateInSurrogate()
{
    static HRESULT result = E_FAIL; // outlives a thread that never ends
    HANDLE const thread = CreateThread(nullptr, 0, CreateForSurrogate, &result, 0, nullptr);
    constexpr DWORD Limit = 20000;
    constexpr DWORD Step = 100; // Ctrl-C is looked for in between
    DWORD waited = WAIT_TIMEOUT;
    for (DWORD time = 0; time < Limit && waited == WAIT_TIMEOUT && !WasInterrupted(); time += Step) {
        waited = WaitForSingleObject(thread, Step);
    }
    CloseHandle(thread);
    if (WasInterrupted()) {
        throw Interruption{};
    }
    return waited == WAIT_TIMEOUT ? std::nullopt : std::optional(result);
}

std::string SystemText(HRESULT code)
{
    std::array<wchar_t, 512> words = {};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        static_cast<DWORD>(code), 0, words.data(), words.size(), nullptr);
    const std::string text = Format(code < 0 ? "%lX " : "%ld ", code) + ToUtf8({words.data(), length});
    return text.substr(0, text.find_last_not_of("\r\n. ") + 1);
}

} // namespace acg::tool
