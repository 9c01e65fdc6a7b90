// Writing a value block.
#include "encoder/Encoder.h"
#include "reader/HexText.h"

namespace acg
{

/// The reader lays the value block out itself: it gets the block and the value.
sceReturnCode Encoder::WriteValueBloc(int32_t BlocNumber, const SecretText& key, uint8_t KeyType,
                                      int32_t value)
{
    constexpr std::wstring_view OperationName = L"WriteValueBloc";

    if (m_colValueBlocks) {
        m_colValueBlocks->push_back(BlocNumber);
    }
    ResetLastError();
    if (SelectCardInRange() == sceError) {
        TraceLastError(OperationName);
        return sceError;
    }
    if (SectorLogin(BlocNumber, key, KeyType, OperationName) == sceError) {
        return sceError;
    }
    const SecretText data(TwoHexDigits(BlocNumber) + EightHexDigits(value));
    SecretText reply;
    if (const Failure failure = EncoderCommand(L"write vblock", data, reply)) {
        TraceLastError(OperationName);
        return sceError;
    }
    ResetLastError(OperationName);
    return sceSuccess;
}

} // namespace acg
