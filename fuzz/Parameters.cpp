// Any parameter text: what is read back is set again as it stands, and each number is in its range.
#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    acg::Encoder encoder(acg::ReaderDLL([](auto) { return acg::EntryPoint(); }), fuzz::JumpingClock);
    encoder.Parameters(acg::FromAnsi({reinterpret_cast<const char*>(Data), Size}));
    const std::wstring text = encoder.Parameters();
    const auto isInRange = [&text](const std::wstring& key, int64_t lowest, int64_t highest) {
        const int64_t number = std::stoll(text.substr(text.rfind(L"\r\n" + key + L"=") + key.size() + 3));
        return number >= lowest && number <= highest;
    };
    assert(isInRange(L"Autodetect", 0, UINT8_MAX) && isInRange(L"Baud rate", INT32_MIN, INT32_MAX) &&
           isInRange(L"Timeout", INT32_MIN, INT32_MAX));
    encoder.Parameters(text);
    assert(encoder.Parameters() == text);
    return 0;
}
