// A host: opens the reader, reads the card, writes a block, and shows the record of a failure; then writes a
// sector's keys and levels, and shows what each key may do.
//
//     example-host [PARAMETERS]        as in: example-host 'Device=com1,card=4k'
//
// Ends with status 1, and the record shown, if the reader can't be opened or a step fails that shouldn't.
#include "examples/Host.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

using namespace acg;

// The sector that the host works on, and its blocks.
constexpr int32_t DemoSector = 1;
constexpr int32_t DemoBlock = 4;
constexpr int32_t ValueBlock = 5;

void Show(const char* label, const std::wstring& text)
{
    std::printf("%-16s %ls\n", label, text.c_str());
}

std::wstring StateName(sceEncoderState state)
{
    const wchar_t* const names[] = {L"unknown", L"closed", L"opened, no card", L"ready"};
    return names[state];
}

void Open(Encoder& encoder)
{
    const std::wstring information = encoder.GetInformation();
    Show("Information", information);
    MustSucceed(encoder, encoder.OpenEncoder(HandleNumber(information)));
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
    MustSucceed(encoder, encoder.ReadSerialNumber(serial));
    Show("Serial", serial);

    std::wstring contents;
    MustSucceed(encoder, encoder.ReadDataBloc(DemoBlock, FactoryKey, KeyTypeA, contents));
    Show("Block before", contents);
    contents = L"54617276656C6C6F2073617973206869"; // "Tarvello says hi"
    MustSucceed(encoder, encoder.WriteDataBloc(DemoBlock, FactoryKey, KeyTypeA, contents));
    MustSucceed(encoder, encoder.ReadDataBloc(DemoBlock, FactoryKey, KeyTypeA, contents));
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
    MustSucceed(encoder, encoder.ReadDataBloc(block, KeyA, KeyTypeA, contents));
    return contents;
}

/// From here on key A may only read, and key B does the writing.
void Rekey(Encoder& encoder)
{
    constexpr auto Level = scbs_A_Read + scbs_B_ReadWrite;
    const sceReturnCode result =
        encoder.WriteSectorTrailer(DemoSector, FactoryKey, KeyTypeA, KeyA, KeyB, BothKeys, Level, Level,
                                   Level, scss_B_WriteKeysConditions);
    MustSucceed(encoder, result);

    std::wstring contents = BlockText(encoder, DemoBlock);
    const bool writtenWithA = encoder.WriteDataBloc(DemoBlock, KeyA, KeyTypeA, contents) == sceSuccess;
    const bool writtenWithB = encoder.WriteDataBloc(DemoBlock, KeyB, KeyTypeB, contents) == sceSuccess;
    std::printf("After re-keying  key A %s, key B %s\n", writtenWithA ? "still writes" : "only reads",
                writtenWithB ? "writes" : "doesn't write");
}

void WriteAsKeyB(Encoder& encoder)
{
    MustSucceed(encoder, encoder.WriteValueBloc(ValueBlock, KeyB, KeyTypeB, /*value=*/1000));
    Show("Value block", BlockText(encoder, ValueBlock));

    std::wstring contents = L"4849"; // "HI"
    MustSucceed(encoder, encoder.WriteBytesInBloc(DemoBlock, KeyB, KeyTypeB, /*FromByte=*/14, /*ToByte=*/15,
                                                  contents));
    Show("Two bytes on", BlockText(encoder, DemoBlock));
}

void ReadManufacturer(Encoder& encoder)
{
    int32_t serialNumber = 0;
    uint8_t checkSum = 0;
    std::wstring info;
    MustSucceed(encoder, encoder.ReadManufacturerCode(FactoryKey, KeyTypeA, serialNumber, checkSum, info));
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
    MustSucceed(encoder, encoder.CloseEncoder());
    Show("State", StateName(encoder.EncoderState()));
    return EXIT_SUCCESS;
}
