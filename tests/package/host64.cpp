// A 64-bit program: reads a block of the simulated card by slot, through the surrogate, and prints it.
#include <ACG_MultiISO_TV.h>
#include <comdef.h>

#include <cstdio>
#include <cwchar>

int main()
{
    static_assert(sizeof(void*) == 8);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    void* made = nullptr;
    if (FAILED(
            CoCreateInstance(__uuidof(Encoder), nullptr, CLSCTX_LOCAL_SERVER, __uuidof(_Encoder), &made))) {
        return 1;
    }
    auto& encoder = *static_cast<_Encoder*>(made);
    BSTR text = nullptr;
    encoder.GetInformation(&text);
    const wchar_t* field = text;
    for (int i = 0; i < 4; ++i) {
        field = std::wcschr(field, L'|') + 1;
    }
    sceReturnCode result = sceError;
    encoder.OpenEncoder(std::wcstol(field, nullptr, 10), &result);
    if (encoder.ReadDataBloc(4, _bstr_t(L"FFFFFFFFFFFF"), 1, &text, &result) != S_OK ||
        result != sceSuccess) {
        return 1;
    }
    std::printf("%ls\n", text);
    SysFreeString(text);
    encoder.Release();
    CoUninitialize();
}
