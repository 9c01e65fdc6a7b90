// Writing a value block.
#include "acg/encoder/Encoder.h"
#include "acg/platform/AnsiText.h"
#include "acg/reader/CommandData.h"

namespace acg
{

/// The reader formats the value block itself: it is sent the block number and the value.
sceReturnCode Encoder::WriteValueBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                      int32_t value)
{
    constexpr std::wstring_view OperationName = L"WriteValueBloc";

    if (m_colValueBlocks) {
        m_colValueBlocks->push_back(BlocNumber);
    }
    ResetLastError();
    if (SelectCardInRange()) {
        return FailBelow(OperationName);
    }
    if (SectorLogin(BlocNumber, key, KeyType, OperationName) == sceError) {
        return sceError;
    }
    CommandData data;
    data.AddByte(BlocNumber).AddNumber(value);
    ByteString reply;
    if (EncoderCommand("write vblock", data, reply)) {
        return FailBelow(OperationName);
    }
    ResetLastError(OperationName);
    return sceSuccess;
}

} // namespace acg
