// The manufacturer's block, block 0 of the card.
//
//     bytes  0 to 3         4            5 to 15
//            serial number  check byte   the manufacturer's data
#include "acg/cards/BlockText.h"
#include "acg/encoder/Encoder.h"
#include "acg/platform/HexText.h"

namespace acg
{

sceReturnCode Encoder::ReadManufacturerCode(std::wstring_view key, uint8_t KeyType, int32_t& SerialNumber,
                                            uint8_t& CheckSum, std::wstring& ManufacturerInfo)
{
    constexpr std::wstring_view OperationName = L"ReadManufacturerCode";
    constexpr int32_t ManufacturerBlock = 0;
    constexpr size_t CheckByte = 4 * DigitsOfByte;
    constexpr size_t Data = 5 * DigitsOfByte;

    ResetLastError();
    SerialNumber = 0;
    CheckSum = 0;
    BlockText text;
    const sceReturnCode result = ReadDataBloc(ManufacturerBlock, key, KeyType, text.Text);
    ManufacturerInfo.clear(); // not before: a host's key may be in it
    if (result == sceError) {
        return FailBelow(OperationName);
    }
    const std::wstring_view block = text.Text;
    SerialNumber = static_cast<int32_t>(ReadHexDigits(block.substr(0, CheckByte)));
    CheckSum = static_cast<uint8_t>(ReadHexDigits(block.substr(CheckByte, DigitsOfByte)));
    ManufacturerInfo = block.substr(Data);
    ResetLastError(OperationName);
    return sceSuccess;
}

} // namespace acg
