// Any replies of a reader through a whole life. The input: from its front a text for each call, which ends
// with a backslash and the character after it, "-" for a function that is missing, "~" for a NUL; from its
// end a letter for each operation. A record always agrees with its result, and what was opened is closed at
// the end.
#undef NDEBUG
#include "tests/acg/encoder/Operations.h"

#include <cassert>
#include <fuzzer/FuzzedDataProvider.h>

using namespace acg;

namespace
{

/// Its handles are digits.
struct Library final : acgreader::ReaderLibrary {
    std::string Reply;
    Handle Comm = 0;
    Handle Reader = 0;

    [[nodiscard]] Handle Digit() const { return static_cast<Handle>(std::atoi(Reply.substr(0, 1).c_str())); }
    Handle OpenComm(Text, uint8_t, acgreader::CommSettings&) override { return Comm = Digit(); }
    std::string DetectReader(Handle, Buffer) override { return Reply; }
    Handle OpenReader(Handle, uint8_t, int32_t) override { return Reader = Digit(); }
    std::string GetReaderType(Handle, Buffer) override { return Reply; }
    std::string SendCommandGetData(Handle, Text, Text, Buffer) override { return Reply; }
    int32_t CloseReader(Handle reader) override { return Reader = reader == Reader ? 0 : Reader, 0; }
    int32_t CloseComm(Handle comm) override { return Comm = comm == Comm ? 0 : Comm, 0; }
};
Library library;

} // namespace

acgreader::ReaderLibrary& acgreader::TheLibrary()
{
    return library;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto find = [&](ReaderFunction function) -> EntryPoint {
        library.Reply = input.ConsumeRandomLengthString();
        if (library.Reply == "-" && function < ReaderFunction::CloseReader) { // or it would never be closed
            return {.LibraryLoaded = true};
        }
        std::ranges::replace(library.Reply, '~', '\0');
        return {.Address = acgreader::FindFunction(function), .LibraryLoaded = true};
    };
    {
        std::chrono::steady_clock::time_point now;
        Encoder encoder(ReaderDLL(find),
                        [&] { return now += std::chrono::seconds(6); }); // OpenEncoder waits 5
        while (input.remaining_bytes() > 0) {
            const auto letter = input.ConsumeIntegralInRange<size_t>(0, 31); // "a" and "A" are 1
            const Operation& operation = Operations[(letter + 31) % 32 % Operations.size()];
            if (operation.Name == "OpenEncoder") {
                encoder.CloseEncoder();
            }
            HostArguments host;
            bool failed = true;
            try {
                const int32_t result = operation.Run(encoder, host);
                failed = result != sceSuccess && operation.Name != "EncoderState"; // which returns a state
            } catch (const RaisedFailure&) {
            }
            const CError& record = *encoder.LastError();
            assert(failed == (record.Number != 0));
            assert(failed != record.Description.empty());
            assert(operation.LeavesArguments(host, !failed, record.RdrCommand));
            assert(failed || (record.RdrCommand + record.RdrRetCode).empty());
        }
    }
    assert((library.Comm | library.Reader) == 0);
    return 0;
}
