// The serial text of the card in the field.
#include "encoder/Encoder.h"

namespace acg
{

sceReturnCode Encoder::ReadSerialNumber(std::wstring& SerialNumber)
{
    ResetLastError();
    const SecretText noData;
    SecretText reply;
    const Failure failure = EncoderCommand(L"select", noData, reply);
    if (failure) {
        RecordNoCard(failure);
        SerialNumber.clear();
    } else {
        SerialNumber = reply;
    }
    TraceLastError(L"ReadSerialNumber");
    return failure ? sceError : sceSuccess;
}

} // namespace acg
