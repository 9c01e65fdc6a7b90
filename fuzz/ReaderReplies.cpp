// Any replies of a reader through a whole life. The input: from its front a text for each call, which ends
// with a backslash and the character behind it, "-" where the function is missing, "~" for a NUL; from its
// end a letter for each operation. A record always agrees with its result, and what was opened is closed at
// the end.
#undef NDEBUG
#include "encoder/Encoder.h"
#include "exports/ReaderLibrary.h"

#include <algorithm>
#include <cassert>
#include <fuzzer/FuzzedDataProvider.h>

using namespace acg;

namespace
{

/// Its handles are digits.
struct Library final : exports::ReaderLibrary {
    std::string Reply;
    Handle Comm = 0;
    Handle Reader = 0;

    [[nodiscard]] Handle Digit() const { return static_cast<Handle>(std::atoi(Reply.substr(0, 1).c_str())); }
    Handle OpenComm(Text, uint8_t, exports::CommSettings&) override { return Comm = Digit(); }
    std::string DetectReader(Handle, Buffer) override { return Reply; }
    Handle OpenReader(Handle, uint8_t, int32_t) override { return Reader = Digit(); }
    std::string GetReaderType(Handle, Buffer) override { return Reply; }
    std::string SendCommandGetData(Handle, Text, Text, Buffer) override { return Reply; }
    int32_t CloseReader(Handle reader) override { return Reader = reader == Reader ? 0 : Reader, 0; }
    int32_t CloseComm(Handle comm) override { return Comm = comm == Comm ? 0 : Comm, 0; }
};
Library library;

} // namespace

exports::ReaderLibrary& exports::TheLibrary()
{
    return library;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    FuzzedDataProvider input(Data, Size);
    const auto find = [&](ReaderFunction function) -> EntryPoint {
        library.Reply = input.ConsumeRandomLengthString();
        if (library.Reply == "-" && function < ReaderFunction::CloseReader) { // or it would never be closed
            return {.LibraryLoaded = true};
        }
        std::ranges::replace(library.Reply, '~', '\0');
        return {.Address = exports::FindFunction(Name(function)), .LibraryLoaded = true};
    };
    {
        std::chrono::steady_clock::time_point now;
        Encoder encoder(ReaderDLL(find),
                        [&] { return now += std::chrono::seconds(6); }); // OpenEncoder waits 5
        const std::wstring information = encoder.GetInformation();
        const int32_t handle = std::stoi(information.substr(information.find(L"|1|") + 3));
        const std::wstring key = L"A0A1A2A3A4A5";
        std::wstring text;
        int32_t serial = 0;
        uint8_t byte = 0;
        SCBS_SecurityLevelEnum level{};
        SCSS_SecurityLevelEnum last{};
        const std::pair<std::wstring_view, std::function<sceReturnCode()>> operations[] = {
            {L"CloseEncoder", [&] { return encoder.CloseEncoder(); }},
            {L"OpenEncoder", [&] { return encoder.CloseEncoder(), encoder.OpenEncoder(handle); }},
            {L"EncoderState", [&] { return void(encoder.EncoderState()), sceSuccess; }},
            {L"ReadSerialNumber", [&] { return encoder.ReadSerialNumber(text); }},
            {L"ReadDataBloc", [&] { return encoder.ReadDataBloc(4, key, 1, text); }},
            {L"WriteDataBloc", [&] { return encoder.WriteDataBloc(4, key, 2, text.assign(32, L'a')); }},
            {L"WriteValueBloc", [&] { return encoder.WriteValueBloc(4, key, 1, -1); }},
            {L"ReadManufacturerCode",
             [&] { return encoder.ReadManufacturerCode(key, 1, serial, byte, text); }},
            {L"ReadSectorTrailer",
             [&] { return encoder.ReadSectorTrailer(1, key, 1, byte, level, level, level, last, byte); }},
            {L"WriteSectorTrailer",
             [&] { return encoder.WriteSectorTrailer(1, key, 1, key, key, 0, level, level, level, last); }},
            {L"WriteBytesInBloc",
             [&] { return encoder.WriteBytesInBloc(4, key, 1, 3, 15, text.assign(L"01")); }},
        };
        while (input.remaining_bytes() > 0) {
            const auto letter = input.ConsumeIntegralInRange<size_t>(0, 31); // "a" and "A" are 1
            const auto& [name, operation] = operations[(letter + 31) % 32 % std::size(operations)];
            const bool failed = operation() == sceError;
            const CError& record = *encoder.LastError();
            assert(record.ComFunction == name && failed == (record.Number != 0));
            assert(failed != record.Description.empty());
            assert(failed || (record.RdrCommand + record.RdrRetCode).empty());
        }
    }
    assert((library.Comm | library.Reader) == 0);
    return 0;
}
