// Writing a value block.
#include "acg/encoder/Encoder.h"
#include "acg/platform/AnsiText.h"
#include "acg/reader/CommandData.h"

namespace acg
{

/// The reader formats the value block itself (data sheet MF1S50yyX, Rev. 3.2, chapter 8.6.2.1): it is sent
/// the block number and the value.
sceReturnCode Encoder::WriteValueBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                      int32_t value)
{
    if (m_hReader != ReaderHandle::None) {
        m_colValueBlocks.push_back(BlocNumber);
    }
    ResetLastError();
    CommandData data;
    data.AddByte(BlocNumber).AddNumber(value);
    ByteString reply;
    const Failure failure =
        BlockCommand("write vblock", data, reply, BlocNumber, key, KeyType, L"WriteValueBloc");
    return failure ? sceError : sceSuccess;
}

} // namespace acg
