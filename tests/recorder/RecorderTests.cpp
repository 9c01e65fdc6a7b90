// The recorder as a library, between a host and the simulated reader, and the replay of what it has written.
#include "abi/ACGReader330.h"
#include "acg/platform/AnsiText.h"
#include "acg/platform/LibraryFile.h"
#include "acg/reader/ReaderDLL.h"
#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace
{

namespace fs = std::filesystem;

/// The results of all functions that have one.
std::string ResultsOf(acg::ReaderDLL& library, std::wstring_view device)
{
    const auto made = [](const acg::Failure& failure) { EXPECT_FALSE(failure); };
    acg::CommSettings settings{.BaudRate = 19200};
    acg::CommHandle comm{};
    made(library.OpenComm(device, 1, settings, comm));
    made(library.SetCommTimeout(comm, 77));
    made(library.SetCommProtocol(comm, 1));
    uint8_t protocol = 9;
    made(library.GetCommProtocol(comm, protocol));
    int32_t baudRate = 9;
    made(library.GetCommBaudRate(comm, baudRate));
    int32_t timeout = 9;
    made(library.GetCommTimeout(comm, timeout));
    std::string readers;
    made(library.DetectReader(comm, readers));
    acg::ReaderHandle reader{9};
    made(library.OpenReader(comm, 65, reader));
    std::wstring type;
    made(library.GetReaderType(reader, type));
    std::wstring id;
    made(library.GetDeviceID(reader, id));
    acg::ByteString reply;
    made(library.SendCommandGetData(reader, "select", "", reply));
    made(library.CloseReader(reader));
    made(library.CloseComm(comm));
    std::ostringstream results;
    results << static_cast<uint32_t>(comm) << ' ' << int{protocol} << ' ' << baudRate << ' ' << timeout << ' '
            << readers << ' ' << static_cast<uint32_t>(reader) << ' ' << std::string(type.begin(), type.end())
            << ' ' << std::string(id.begin(), id.end()) << ' ' << reply.Bytes()[0];
    return results.str();
}

acg::ReaderDLL LibraryIn(const fs::path& file)
{
    return acg::ReaderDLL(
        [file](acg::ReaderFunction function) { return acg::FindInFile(file.native(), NameOf(function)); });
}

TEST(RecorderTest, EveryFunctionIsPassedOnWithItsResultAndReplayed)
{
    const fs::path library = fs::path(acg::OwnFolder()) / acg::LibraryFileName("ACGReader330");
    const TemporaryFolder temporary;
    const fs::path folder = temporary.Path;
    fs::copy_file(library, folder / "next.so");      // whose first handle is 1
    fs::copy_file(library, folder / "replaying.so"); // which from then on only replays
    const fs::path log = folder / "log";
    setenv("ACG_READER_LOG", log.c_str(), /*replace=*/1);
    setenv("ACG_READER_LIBRARY", "/nowhere", /*replace=*/1);

    acg::ReaderDLL recorder = LibraryIn(library.parent_path() / "recorder" / library.filename());
    acg::ReaderDLL replaying = LibraryIn(folder / "replaying.so");
    const std::wstring replay = L"x,replay=" + log.wstring();
    const std::string none = "0 0 0 0  0   ?";
    const std::string all = "1 1 19200 77 A 2 MultiISO 2.1 Simulated reader 41 N";
    EXPECT_EQ(ResultsOf(recorder, L"com1"), none);
    setenv("ACG_READER_LIBRARY", (folder / "next.so").c_str(), /*replace=*/1);
    EXPECT_EQ(ResultsOf(recorder, L"com1"), all);
    EXPECT_EQ(ResultsOf(replaying, replay), none);
    EXPECT_EQ(ResultsOf(replaying, replay), all);

    const auto repeatAndExit = [&recorder] {
        int32_t timeout = 0;
        for (int i = 0; i < 12; ++i) {
            static_cast<void>(recorder.GetCommTimeout(acg::CommHandle{5}, timeout));
        }
        std::exit(EXIT_SUCCESS); // NOLINT(concurrency-mt-unsafe)
    };
    EXPECT_EXIT(repeatAndExit(), testing::ExitedWithCode(EXIT_SUCCESS), "");
    std::ostringstream text;
    text << std::ifstream(log).rdbuf();
    EXPECT_NE(text.str().find(" repeated: calls 1, times 11 "), std::string::npos);
}

} // namespace
