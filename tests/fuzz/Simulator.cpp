// Any device text, and then any commands and their data by turns, each a text that ends with a backslash and
// the character after it: each answer is data or a status letter.
#undef NDEBUG
#include "acg/platform/HexText.h"
#include "simulator/Library.h"

#include <cassert>
#include <fuzzer/FuzzedDataProvider.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    simulator::Library library;
    const acgreader::CommSettings settings;
    uint32_t comm = 0;
    try {
        simulator::Device device = simulator::ParseDeviceText(input.ConsumeRandomLengthString());
        device.Card.SavePath.clear(); // it neither writes files nor sleeps
        device.Folder.clear();
        device.BaudRate.reset();
        comm = library.Open(device, settings);
    } catch (const std::runtime_error&) { // what OpenComm reports on the standard error
    }
    const std::string ids = library.DetectReader(comm, {});
    const uint32_t reader = library.OpenReader(comm, static_cast<uint8_t>(ids.c_str()[0]), /*Third=*/0);
    assert((comm != 0 || ids.empty()) && ids.empty() == (reader == 0));
    while (input.remaining_bytes() > 0) {
        const std::string command = input.ConsumeRandomLengthString();
        const std::string reply =
            library.SendCommandGetData(reader, command, input.ConsumeRandomLengthString(), {});
        const bool isStatus = reply.size() == 2 && reply[1] == '\0' &&
                              simulator::StatusLetters.find(reply[0]) != std::string::npos;
        assert(isStatus || (reader != 0 && reply.size() <= 32 && acg::FromHex(reply)));
    }
    return 0;
}
