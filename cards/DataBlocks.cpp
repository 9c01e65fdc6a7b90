// The login on a sector, and reading and writing one 16-byte block.
#include "cards/BlockAddress.h"
#include "cards/BlockText.h"
#include "encoder/Encoder.h"
#include "platform/TextCase.h"
#include "reader/HexText.h"
#include "reader/StatusLetters.h"

namespace acg
{

namespace
{

/// The one reader whose answer to "login" tells nothing.
constexpr std::wstring_view ReaderWithSilentLogin = L"multiiso 1.0";

/// A reply as block text: filled with "0" at its end, or cut.
void StoreBlockText(const SecretText& reply, std::wstring& BlocContents)
{
    StoreInHostText(BlocContents, reply.Characters().substr(0, BlockDigits));
    BlocContents.resize(BlockDigits, L'0');
}

} // namespace

/// Logs in on the sector of a block. A failure is recorded whole, under the name of the calling operation.
///
/// The good reply to "login" is the status letter "L", which the exchange raises like any status letter; a
/// reply of data is a failure of the reader. One kind of reader answers otherwise: there the block command
/// tells whether the login held.
sceReturnCode Encoder::SectorLogin(int32_t BlocNumber, const SecretText& key, uint8_t KeyType,
                                   std::wstring_view OperationName)
{
    constexpr size_t DigitsBeforeKey = 4;
    SecretText data;
    data.Reserve(DigitsBeforeKey + key.Characters().size());
    data += TwoHexDigits(LoginSector(BlocNumber));
    data += KeyType == KeyTypeB ? L"BB" : L"AA";
    data += key;
    MakeUpper(data.InPlace());

    SecretText reply;
    const Failure failure = EncoderCommand(L"login", data, reply);
    if (m_sReaderType == ReaderWithSilentLogin) {
        return sceSuccess;
    }
    if (failure && IsStatus(m_oLastError->RdrRetCode, StatusLoggedIn)) {
        return sceSuccess;
    }
    const KnownFailure& cause = failure ? AuthenticationFailure : EncoderFailure;
    // The other fields stay: the exchange's own, or for a reply of data what the selection left.
    SetLastError(cause.Number, cause.Description);
    TraceLastError(OperationName);
    return sceError;
}

sceReturnCode Encoder::ReadDataBloc(int32_t BlocNumber, const SecretText& key, uint8_t KeyType,
                                    std::wstring& BlocContents)
{
    constexpr std::wstring_view OperationName = L"ReadDataBloc";

    ResetLastError();
    if (SelectCardInRange() == sceError) {
        TraceLastError(OperationName);
        return sceError;
    }
    BlocContents.clear();
    if (SectorLogin(BlocNumber, key, KeyType, OperationName) == sceError) {
        return sceError;
    }
    const SecretText data(TwoHexDigits(BlocNumber));
    SecretText reply;
    if (const Failure failure = EncoderCommand(L"read block", data, reply)) {
        TraceLastError(OperationName);
        return sceError;
    }
    ResetLastError(OperationName);
    StoreBlockText(reply, BlocContents);
    return sceSuccess;
}

sceReturnCode Encoder::WriteDataBloc(int32_t BlocNumber, const SecretText& key, uint8_t KeyType,
                                     std::wstring& BlocContents)
{
    constexpr std::wstring_view OperationName = L"WriteDataBloc";

    ResetLastError();
    if (!IsHexString(BlocContents, BlockDigits)) {
        RecordRefusal(BadDataBloc, OperationName);
        return sceError;
    }
    if (SelectCardInRange() == sceError) {
        TraceLastError(OperationName);
        return sceError;
    }
    if (SectorLogin(BlocNumber, key, KeyType, OperationName) == sceError) {
        return sceError;
    }
    SecretText data(TwoHexDigits(BlocNumber));
    data += BlocContents; // a sector trailer holds keys
    SecretText reply;
    if (const Failure failure = EncoderCommand(L"write block", data, reply)) {
        TraceLastError(OperationName);
        return sceError;
    }
    StoreBlockText(reply, BlocContents);
    ResetLastError(OperationName);
    return sceSuccess;
}

} // namespace acg
