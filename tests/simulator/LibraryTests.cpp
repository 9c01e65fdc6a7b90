// The reader library as a host sees it: the shared library, its names and its byte strings.
#include "platform/AnsiText.h"
#include "platform/Library.h"
#include "reader/ReaderCall.h"
#include "reader/ReaderDLL.h"

#include <gtest/gtest.h>

namespace simulator
{

namespace
{

template <class Result, class... Arguments>
Result Call(const char* name, Arguments... arguments)
{
    static acg::Library library("ACGReader330");
    auto* const function =
        reinterpret_cast<Result(ACG_READER_CALL*)(Arguments...)>(library.Find(name).Address);
    return function(arguments...);
}

template <class... Arguments>
std::string Text(const char* name, uint32_t handle, Arguments... arguments)
{
    char* const noBuffer = nullptr;
    return std::string(acg::ByteString(Call<char*>(name, handle, arguments..., noBuffer)).Bytes());
}

TEST(SimulatedLibraryTest, ServesAWholeLifeAndTakesEveryWrongHandle)
{
    const acg::CommSettings settings = {.BaudRate = 19200, .Protocol = 1};
    const char* const noText = nullptr;
    const std::string unknown("?\0", 2);
    const auto settingsOf = [](uint32_t comm) {
        return std::tuple(Call<int32_t>("GetCommBaudRate", comm), int{Call<uint8_t>("GetCommProtocol", comm)},
                          Call<int32_t>("GetCommTimeout", comm));
    };
    const auto openReader = [](uint32_t comm, uint8_t id) {
        return Call<uint32_t>("OpenReader", comm, id, uint32_t{0});
    };
    EXPECT_EQ(Call<uint32_t>("OpenComm", "com1,card=2k", uint8_t{0}, &settings), 0U);
    const auto comm = Call<uint32_t>("OpenComm", "com1,uid=11223344,readers=4142", uint8_t{0}, &settings);
    const uint32_t reader = openReader(comm, 0x42);
    const uint32_t other = openReader(comm, 0x41);
    EXPECT_EQ(openReader(comm, 0x43), 0U);
    for (const uint32_t wrong : {0U, 0xFFFFFFFFU}) {
        EXPECT_EQ(settingsOf(wrong), std::tuple(0, 0, 0));
        EXPECT_EQ(Text("DetectReader", wrong), "");
        EXPECT_EQ(openReader(wrong, 0x41), 0U);
        EXPECT_EQ(Text("SendCommandGetData", wrong, "select", ""), unknown);
    }
    Call<int32_t>("CloseComm", reader); // closes nothing, nor does the next
    Call<int32_t>("CloseReader", comm);

    EXPECT_EQ(settingsOf(comm), std::tuple(19200, 1, 1000));
    Call<int32_t>("SetCommTimeout", comm, int32_t{2200});
    Call<int32_t>("SetCommProtocol", comm, uint8_t{0});
    EXPECT_EQ(settingsOf(comm), std::tuple(19200, 0, 2200));
    EXPECT_EQ(Text("DetectReader", comm), "AB");
    EXPECT_EQ(Text("GetReaderType", reader), "MultiISO 2.1");
    EXPECT_EQ(Text("GetDeviceID", reader), "Simulated reader 42");
    EXPECT_EQ(Text("SendCommandGetData", reader, noText, noText), unknown);
    EXPECT_EQ(Text("SendCommandGetData", reader, "use iso14443a", ""), "");
    EXPECT_EQ(Text("SendCommandGetData", reader, "antenna on", noText), "");
    EXPECT_EQ(Text("SendCommandGetData", reader, "select", ""), "11223344");
    EXPECT_EQ(Text("SendCommandGetData", other, "select", ""), std::string("N\0", 2)); // its antenna is off

    Call<int32_t>("CloseReader", reader);
    EXPECT_EQ(Text("GetReaderType", reader), "");
    Call<int32_t>("CloseComm", comm); // takes the other reader with it
    EXPECT_EQ(Text("GetReaderType", other), "");
}

} // namespace
} // namespace simulator
