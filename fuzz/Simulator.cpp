// Any device text, and then any commands and their data by turns: each answer is data or a status letter.
#include "fuzz/Fuzz.h"
// The functions themselves, and within reach the cards, which stay for as long as the process.
#include "simulator/Library.cpp" // NOLINT(bugprone-suspicious-include)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    FuzzedDataProvider input(Data, Size);
    const auto next = [&input] { return input.ConsumeRandomLengthString(); };
    const auto text = [](char* bytes) { return std::string(acg::ByteString(bytes).Bytes()); };
    TheLibrary().Cards = {};
    const CommSettings settings{};
    const uint32_t comm = OpenComm(next().c_str(), /*autodetect=*/1, &settings);
    const std::string ids = text(DetectReader(comm, nullptr));
    const uint32_t reader = OpenReader(comm, static_cast<uint8_t>(ids.c_str()[0]), /*reserved=*/0);
    assert((comm != 0 || ids.empty()) && ids.empty() == (reader == 0));
    while (input.remaining_bytes() > 0) {
        const std::string command = next();
        const std::string reply = text(SendCommandGetData(reader, command.c_str(), next().c_str(), nullptr));
        const bool isStatus = reply.size() == 2 && reply[1] == '\0' &&
                              simulator::StatusLetters.find(reply[0]) != std::string::npos;
        assert(isStatus || (reader != 0 && reply.size() <= 32 && simulator::FromHex(reply)));
    }
    CloseComm(comm);
    assert(TheLibrary().Readers.empty() && TheLibrary().Comms.empty());
    return 0;
}
