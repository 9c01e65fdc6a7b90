// The serial text of the card in the field.
#include "acg/encoder/Encoder.h"
#include "acg/platform/AnsiText.h"
#include "acg/reader/CommandData.h"

namespace acg
{

sceReturnCode Encoder::ReadSerialNumber(std::wstring& SerialNumber)
{
    ResetLastError();
    ByteString reply;
    const Failure failure = SelectCard(reply);
    if (failure) {
        SerialNumber.clear();
    } else {
        ReplaceByAnsi(SerialNumber, reply.Bytes());
    }
    TraceLastError(L"ReadSerialNumber");
    return failure ? sceError : sceSuccess;
}

} // namespace acg
