// Any parameter text: what is read back is set again as it stands.
#include "fuzz/Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    acg::Encoder encoder(acg::ReaderDLL([](auto) { return acg::EntryPoint(); }), fuzz::JumpingClock);
    encoder.Parameters(acg::FromAnsi({reinterpret_cast<const char*>(Data), Size}));
    const std::wstring text = encoder.Parameters();
    encoder.Parameters(text);
    assert(encoder.Parameters() == text);
    return 0;
}
