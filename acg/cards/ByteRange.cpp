// Changing a range of bytes in a block: the block is read, the bytes are replaced, and it is written back.
#include "acg/cards/BlockText.h"
#include "acg/encoder/Encoder.h"
#include "acg/encoder/Failures.h"

namespace acg
{

sceReturnCode Encoder::WriteBytesInBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                        uint8_t FromByte, uint8_t ToByte, std::wstring& BlocContents)
{
    constexpr std::wstring_view OperationName = L"WriteBytesInBloc";

    ResetLastError();
    BlockText oldBlock;
    if (ReadDataBloc(BlocNumber, key, KeyType, oldBlock.Text) == sceError) {
        BlocContents.clear();
        return FailBelow(OperationName);
    }
    const std::wstring_view old = oldBlock.Text;
    if (FromByte >= BlockBytes || ToByte >= BlockBytes || ToByte < FromByte) {
        Replace(BlocContents, old);
        return Fail(BadOffsets, OperationName);
    }

    const size_t from = FromByte * DigitsOfByte;
    const size_t end = (ToByte + 1) * DigitsOfByte;
    BlockText newBlock;
    newBlock.Text = old.substr(0, from);
    newBlock.Text.append(BlocContents, 0, end - from).resize(end, L'0');
    newBlock.Text += old.substr(end);
    if (WriteDataBloc(BlocNumber, key, KeyType, newBlock.Text) == sceError) {
        Replace(BlocContents, old);
        return FailBelow(OperationName);
    }
    ResetLastError(OperationName);
    Replace(BlocContents, newBlock.Text);
    return sceSuccess;
}

} // namespace acg
