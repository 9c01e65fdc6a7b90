// The manufacturer's block, block 0 of the card.
//
//     bytes  0 to 3         4            5 to 15
//            serial number  check byte   the manufacturer's data
#include "cards/BlockText.h"
#include "encoder/Encoder.h"
#include "reader/HexText.h"

namespace acg
{

sceReturnCode Encoder::ReadManufacturerCode(const SecretText& key, uint8_t KeyType, int32_t& SerialNumber,
                                            uint8_t& CheckSum, std::wstring& ManufacturerInfo)
{
    constexpr std::wstring_view OperationName = L"ReadManufacturerCode";
    constexpr int32_t ManufacturerBlock = 0;
    constexpr size_t CheckByte = 4 * DigitsOfByte;
    constexpr size_t Data = 5 * DigitsOfByte;

    ResetLastError();
    SerialNumber = 0;
    CheckSum = 0;
    ManufacturerInfo.clear();
    SecretText text; // like the text of any block
    text.Reserve(BlockDigits);
    if (ReadDataBloc(ManufacturerBlock, key, KeyType, text.InPlace()) == sceError) {
        TraceLastError(OperationName);
        return sceError;
    }
    const std::wstring_view block = text;
    SerialNumber = static_cast<int32_t>(ReadHexDigits(block.substr(0, CheckByte)));
    CheckSum = static_cast<uint8_t>(ReadHexDigits(block.substr(CheckByte, DigitsOfByte)));
    ManufacturerInfo = block.substr(Data);
    ResetLastError(OperationName);
    return sceSuccess;
}

} // namespace acg
