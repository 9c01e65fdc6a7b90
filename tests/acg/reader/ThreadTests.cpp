// What is promised of several threads: look-ups in one library, the simulated reader library, and the
// recorder. A program of its own, for the thread sanitizer, under which a race is a failure.
#include "abi/ACGReader330.h"
#include "acg/platform/AnsiText.h"
#include "acg/platform/LibraryFile.h"
#include "acg/reader/ReaderDLL.h"

#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace acg;

namespace
{

constexpr int Threads = 4;
constexpr int Rounds = 50;

/// Opens, selects the card and closes; true if all of it goes well.
bool UseReader(ReaderDLL& library)
{
    CommSettings settings;
    CommHandle comm{};
    ReaderHandle reader{};
    ByteString reply;
    bool isGood = !library.OpenComm(L"com1", /*Autodetect=*/1, settings, comm) &&
                  !library.OpenReader(comm, /*ReaderId=*/'A', reader);
    for (const char* command : {"use iso14443a", "antenna on", "select"}) {
        isGood = !library.SendCommandGetData(reader, command, "", reply) && isGood;
    }
    return !library.CloseReader(reader) && !library.CloseComm(comm) && isGood && reply.Bytes() == "1D2C3B4A";
}

TEST(ThreadTest, SeveralUseTheLibraryAndTheRecorderAtOnce)
{
    setenv("ACG_READER_LIBRARY", ACG_SIMULATOR, /*overwrite=*/1);
    setenv("ACG_READER_LOG", "/dev/null", /*overwrite=*/1);
    Library library("ACGReader330");
    const EntryPointLookUp lookUps[] = {
        FindInLibrary,
        [&](ReaderFunction function) { return library.Find(NameOf(function)); },
        [](ReaderFunction function) { return FindInFile(ACG_RECORDER, NameOf(function)); },
    };
    for (const EntryPointLookUp& lookUp : lookUps) {
        std::atomic<int> good = 0;
        std::vector<std::jthread> threads(Threads);
        for (std::jthread& thread : threads) {
            thread = std::jthread([&] {
                ReaderDLL reader(lookUp);
                for (int round = 0; round < Rounds; ++round) {
                    good += UseReader(reader) ? 1 : 0;
                }
            });
        }
        threads.clear(); // which waits for their ends
        EXPECT_EQ(good, Threads * Rounds);
    }
}

} // namespace
