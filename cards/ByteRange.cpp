// Changing a range of bytes in a block: the block is read, the bytes are put in, and it is written back.
#include "cards/BlockText.h"
#include "encoder/Encoder.h"

namespace acg
{

/// The old and the new block may be a sector trailer, with keys.
sceReturnCode Encoder::WriteBytesInBloc(int32_t BlocNumber, const SecretText& key, uint8_t KeyType,
                                        uint8_t FromByte, uint8_t ToByte, std::wstring& BlocContents)
{
    constexpr std::wstring_view OperationName = L"WriteBytesInBloc";

    ResetLastError();
    SecretText oldBlock;
    oldBlock.Reserve(BlockDigits);
    if (ReadDataBloc(BlocNumber, key, KeyType, oldBlock.InPlace()) == sceError ||
        oldBlock.Characters().size() != BlockDigits) {
        EnsureNumber(ReadErrorOnEncoder);
        TraceLastError(OperationName);
        BlocContents.clear();
        return sceError;
    }
    if (FromByte >= BlockBytes || ToByte >= BlockBytes || ToByte < FromByte) {
        RecordRefusal(BadOffsets, OperationName);
        StoreInHostText(BlocContents, oldBlock);
        return sceError;
    }

    const size_t from = FromByte * DigitsOfByte;
    const size_t behind = (ToByte + 1) * DigitsOfByte;
    SecretText newBlock;
    newBlock.Reserve(BlockDigits);
    newBlock += oldBlock.Characters().substr(0, from);
    newBlock += std::wstring_view(BlocContents).substr(0, behind - from);
    newBlock.InPlace().resize(behind, L'0');
    newBlock += oldBlock.Characters().substr(behind);

    if (WriteDataBloc(BlocNumber, key, KeyType, newBlock.InPlace()) == sceError) {
        EnsureNumber(WriteErrorOnEncoder);
        TraceLastError(OperationName);
        StoreInHostText(BlocContents, oldBlock);
        return sceError;
    }
    ResetLastError(OperationName);
    StoreInHostText(BlocContents, newBlock);
    return sceSuccess;
}

/// A guard: the block operations leave a number whenever they fail, and 32 digits whenever they succeed.
void Encoder::EnsureNumber(const KnownFailure& Guard)
{
    if (m_oLastError->Number == 0) {
        SetLastError(Guard.Number, Guard.Description);
    }
}

} // namespace acg
