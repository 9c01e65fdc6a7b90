// The login on a sector, and reading and writing one 16-byte block.
#include "acg/cards/BlockAddress.h"
#include "acg/cards/BlockText.h"
#include "acg/encoder/Encoder.h"
#include "acg/encoder/Failures.h"
#include "acg/platform/HexText.h"
#include "acg/reader/CommandExchange.h"

namespace acg
{

namespace
{

/// Makes a host's text of a reply of the reader: filled with "0" at its end to a block, or cut. True if it
/// was neither.
[[nodiscard]] bool StoreReply(std::wstring& hostText, std::string_view reply)
{
    MakeRoom(hostText, BlockDigits);
    ReplaceByAnsi(hostText, reply, /*maxLength=*/BlockDigits + 1); // one more shows that there are more
    const bool isWhole = hostText.size() == BlockDigits;
    hostText.resize(BlockDigits, L'0');
    return isWhole;
}

} // namespace

/// Logs in on the sector of a block. A failure is recorded whole, under the name of the calling operation.
Failure Encoder::SectorLogin(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                             std::wstring_view OperationName)
{
    CommandData data;
    data.AddByte(LoginSector(BlocNumber)).AddByte(KeyType == KeyTypeB ? 0xBB : 0xAA).AddText(key);
    ByteString reply;
    const Failure failure = JudgeLogin(Exchange("login", data, reply), m_sReaderType);
    if (!failure) {
        return {};
    }
    if (failure.Number == EncoderFailure.Number) { // the other fields keep what the selection has set
        m_oLastError->Number = failure.Number;
        m_oLastError->Description = failure.Description;
    } else {
        RecordExchange(failure, "login");
    }
    TraceLastError(OperationName);
    return failure;
}

/// Selects the card, logs in on the block's sector and sends a command. Success or failure is recorded under
/// the name of the calling operation. isSelected becomes true once the card is selected.
Failure Encoder::BlockCommand(const char* command, const CommandData& data, ByteString& reply,
                              int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                              std::wstring_view OperationName, bool* isSelected)
{
    if (const Failure failure = SelectCardInRange()) {
        TraceLastError(OperationName);
        return failure;
    }
    if (isSelected != nullptr) {
        *isSelected = true;
    }
    if (const Failure failure = SectorLogin(BlocNumber, key, KeyType, OperationName)) {
        return failure;
    }
    if (const Failure failure = EncoderCommand(command, data, reply)) {
        TraceLastError(OperationName);
        return failure;
    }
    ResetLastError(OperationName);
    return {};
}

sceReturnCode Encoder::ReadDataBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                    std::wstring& BlocContents)
{
    ResetLastError();
    CommandData data;
    data.AddByte(BlocNumber);
    ByteString reply;
    bool isSelected = false;
    if (const Failure failure =
            BlockCommand("read block", data, reply, BlocNumber, key, KeyType, L"ReadDataBloc", &isSelected)) {
        if (isSelected) {
            BlocContents.clear();
        }
        return sceError;
    }
    m_bReplyIsWhole = StoreReply(BlocContents, reply.Bytes());
    return sceSuccess;
}

sceReturnCode Encoder::WriteDataBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                     std::wstring& BlocContents)
{
    constexpr std::wstring_view OperationName = L"WriteDataBloc";

    ResetLastError();
    if (!IsHexString(BlocContents, BlockDigits)) {
        return Fail(BadDataBloc, OperationName);
    }
    CommandData data;
    data.AddByte(BlocNumber).AddText(BlocContents);
    ByteString reply;
    if (const Failure failure =
            BlockCommand("write block", data, reply, BlocNumber, key, KeyType, OperationName)) {
        return sceError;
    }
    m_bReplyIsWhole = StoreReply(BlocContents, reply.Bytes());
    return sceSuccess;
}

} // namespace acg
