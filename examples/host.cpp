// A host: opens the reader, reads the card, writes a block, and shows the record of a failure; then writes a
// sector's keys and levels, and shows what each key may do.
//
//     example-host [PARAMETERS]        as in: example-host 'Device=com1,card=4k'
//
// Ends with status 1, and the record shown, if the reader can't be opened or a step fails that shouldn't.
#include "acg/encoder/Encoder.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

using namespace acg;

const std::wstring FactoryKey = L"FFFFFFFFFFFF";

// The sector that the host works on, and its blocks.
constexpr int32_t DemoSector = 1;
constexpr int32_t DemoBlock = 4;
constexpr int32_t ValueBlock = 5;
const std::wstring DemoKeyA = L"A0A1A2A3A4A5";
const std::wstring DemoKeyB = L"B0B1B2B3B4B5";

void Show(const char* label, const std::wstring& text)
{
    std::printf("%-16s %ls\n", label, text.c_str());
}

void ShowRecord(Encoder& encoder)
{
    const auto record = encoder.LastError();
    std::printf("  Number         %d\n", record->Number);
    std::printf("  Description    %ls\n", record->Description.c_str());
    std::printf("  LastDllError   %d\n", record->LastDllError);
    std::printf("  ComFunction    %ls\n", record->ComFunction.c_str());
    std::printf("  RdrCommand     %ls\n", record->RdrCommand.c_str());
    std::printf("  RdrRetCode     %ls\n", record->RdrRetCode.c_str());
}

/// Ends the program if a step failed.
void MustSucceed(Encoder& encoder, const char* step, sceReturnCode result)
{
    if (result != sceSuccess) {
        std::printf("%s failed:\n", step);
        ShowRecord(encoder);
        encoder.CloseEncoder();
        std::exit(EXIT_FAILURE);
    }
}

std::wstring StateName(sceEncoderState state)
{
    switch (state) {
    case sceClosed:
        return L"closed";
    case sceOpened:
        return L"opened, no card";
    case sceReady:
        return L"ready";
    default:
        return L"unknown";
    }
}

/// The fifth field of the information text: the number that OpenEncoder asks for.
int32_t HandleNumber(const std::wstring& information)
{
    size_t from = 0;
    for (int field = 1; field < 5; ++field) {
        from = information.find(L'|', from) + 1;
    }
    return static_cast<int32_t>(std::stol(information.substr(from)));
}

void Open(Encoder& encoder)
{
    const std::wstring information = encoder.GetInformation();
    Show("Information", information);
    MustSucceed(encoder, "OpenEncoder", encoder.OpenEncoder(HandleNumber(information)));
    Show("State", StateName(encoder.EncoderState()));
    try {
        Show("Reader type", encoder.ReaderType());
    } catch (const RaisedFailure& raised) {
        std::printf("Reader type      none: %d, %ls\n", raised.Number, raised.Description.c_str());
    }
}

void ReadAndWrite(Encoder& encoder)
{
    std::wstring serial;
    MustSucceed(encoder, "ReadSerialNumber", encoder.ReadSerialNumber(serial));
    Show("Serial", serial);

    std::wstring contents;
    MustSucceed(encoder, "ReadDataBloc", encoder.ReadDataBloc(DemoBlock, FactoryKey, KeyTypeA, contents));
    Show("Block before", contents);
    contents = L"54617276656C6C6F2073617973206869"; // "Tarvello says hi"
    MustSucceed(encoder, "WriteDataBloc", encoder.WriteDataBloc(DemoBlock, FactoryKey, KeyTypeA, contents));
    MustSucceed(encoder, "ReadDataBloc", encoder.ReadDataBloc(DemoBlock, FactoryKey, KeyTypeA, contents));
    Show("Block after", contents);
}

void ProvokeAFailure(Encoder& encoder)
{
    std::wstring contents;
    const sceReturnCode result = encoder.ReadDataBloc(DemoBlock, L"000000000000", KeyTypeA, contents);
    std::printf("A wrong key returns %s, and the record says why:\n",
                result == sceError ? "sceError" : "no failure");
    ShowRecord(encoder);
}

std::wstring BlockText(Encoder& encoder, int32_t block)
{
    std::wstring contents;
    MustSucceed(encoder, "ReadDataBloc", encoder.ReadDataBloc(block, DemoKeyA, KeyTypeA, contents));
    return contents;
}

/// From here on key A may only read, and key B does the writing.
void Rekey(Encoder& encoder)
{
    constexpr auto level = scbs_A_Read + scbs_B_ReadWrite;
    const sceReturnCode result =
        encoder.WriteSectorTrailer(DemoSector, FactoryKey, KeyTypeA, DemoKeyA, DemoKeyB, BothKeys, level,
                                   level, level, scss_B_WriteKeysConditions);
    MustSucceed(encoder, "WriteSectorTrailer", result);

    std::wstring contents = BlockText(encoder, DemoBlock);
    const bool writtenWithA = encoder.WriteDataBloc(DemoBlock, DemoKeyA, KeyTypeA, contents) == sceSuccess;
    const bool writtenWithB = encoder.WriteDataBloc(DemoBlock, DemoKeyB, KeyTypeB, contents) == sceSuccess;
    std::printf("After re-keying  key A %s, key B %s\n", writtenWithA ? "still writes" : "only reads",
                writtenWithB ? "writes" : "doesn't write");
}

void WriteAsKeyB(Encoder& encoder)
{
    MustSucceed(encoder, "WriteValueBloc",
                encoder.WriteValueBloc(ValueBlock, DemoKeyB, KeyTypeB, /*value=*/1000));
    Show("Value block", BlockText(encoder, ValueBlock));

    std::wstring contents = L"4849"; // "HI"
    MustSucceed(
        encoder, "WriteBytesInBloc",
        encoder.WriteBytesInBloc(DemoBlock, DemoKeyB, KeyTypeB, /*FromByte=*/14, /*ToByte=*/15, contents));
    Show("Two bytes on", BlockText(encoder, DemoBlock));
}

void ReadManufacturer(Encoder& encoder)
{
    int32_t serialNumber = 0;
    uint8_t checkSum = 0;
    std::wstring info;
    MustSucceed(encoder, "ReadManufacturerCode",
                encoder.ReadManufacturerCode(FactoryKey, KeyTypeA, serialNumber, checkSum, info));
    std::printf("Manufacturer     serial %d, check byte %d, data %ls\n", serialNumber, checkSum,
                info.c_str());
}

} // namespace

int main(int argc, char* argv[])
{
    std::setlocale(LC_CTYPE, "C.UTF-8");

    Encoder encoder;
    if (argc > 1) {
        std::vector<wchar_t> parameters(std::string(argv[1]).size() + 1);
        if (std::mbstowcs(parameters.data(), argv[1], parameters.size()) == static_cast<size_t>(-1)) {
            std::puts("The parameter text isn't valid UTF-8.");
            return EXIT_FAILURE;
        }
        encoder.Parameters(parameters.data());
    }
    Open(encoder);
    ReadAndWrite(encoder);
    ProvokeAFailure(encoder);
    Rekey(encoder);
    WriteAsKeyB(encoder);
    ReadManufacturer(encoder);
    MustSucceed(encoder, "CloseEncoder", encoder.CloseEncoder());
    Show("State", StateName(encoder.EncoderState()));
    return EXIT_SUCCESS;
}
