// Any replies of a reader, a text for each call: "-" where the function is missing, "~" for a NUL. Each
// letter is an operation of the encoder's. Its record always agrees with its result, and what was opened is
// closed at the end.
#include "fuzz/Fuzz.h"

#include <algorithm>

using namespace acg;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    FuzzedDataProvider input(Data, Size);
    std::string reply;
    ReaderFunction called{};
    ReaderHandle comm = 0;
    ReaderHandle reader = 0;
    const auto find = [&](ReaderFunction function) {
        called = function;
        reply = input.ConsumeRandomLengthString();
        if (reply != "-") {
            return fuzz::Library::Find(function);
        }
        comm = called == ReaderFunction::CloseComm ? 0 : comm; // what can't be closed needn't be
        reader = called == ReaderFunction::CloseReader ? 0 : reader;
        return EntryPoint{.LibraryLoaded = true};
    };
    fuzz::Library::Answer = [&](ReaderHandle handle, auto...) {
        const auto given = static_cast<ReaderHandle>(std::atoi(reply.substr(0, 1).c_str()));
        const auto follow = [&](ReaderHandle& open, ReaderFunction opens, ReaderFunction closes) {
            open = called == opens ? given : called == closes && handle == open ? 0 : open;
        };
        follow(comm, ReaderFunction::OpenComm, ReaderFunction::CloseComm);
        follow(reader, ReaderFunction::OpenReader, ReaderFunction::CloseReader);
        std::ranges::replace(reply, '~', '\0');
        return reply;
    };
    {
        Encoder encoder(ReaderDLL(find), fuzz::JumpingClock);
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
            {L"ReaderType",
             [&] {
                 try {
                     text = encoder.ReaderType();
                     return sceSuccess;
                 } catch (const RaisedFailure&) {
                     return sceError;
                 }
             }},
            {L"OpenEncoder",
             [&] {
                 encoder.ReOpenEncoder();
                 return encoder.LastError()->Number == 0 ? sceSuccess : sceError;
             }},
        };
        while (input.remaining_bytes() > 0) {
            const auto letter = input.ConsumeIntegralInRange<size_t>(0, 31); // "a" and "A" are 1
            const auto& [name, operation] = operations[(letter + 31) % 32 % std::size(operations)];
            const bool failed = operation() == sceError;
            const CError& record = *encoder.LastError();
            assert(record.ComFunction == name && failed == (record.Number != 0));
            assert(failed ? !record.Description.empty()
                          : (record.Description + record.RdrCommand + record.RdrRetCode).empty());
            assert((comm | reader) == 0 || name != L"CloseEncoder");
        }
    }
    assert((comm | reader) == 0);
    return 0;
}
