// The binding of the library, its texts, and its call failures.
#include "platform/AnsiText.h"
#include "reader/ReaderCall.h"
#include "tests/ScriptedReader.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#endif

namespace acg
{

namespace
{

TEST(ReaderDLLTest, MissingFunctionAssignsNothingAndServesAgainOnceFound)
{
    ScriptedReader reader;
    const ReaderDLL dll = reader.DLL();
    reader.Missing(ReaderFunction::GetCommTimeout, /*FromCall=*/1, /*Times=*/1);
    int32_t timeout = 5;
    const Failure failure = dll.GetCommTimeout(1, timeout);
    EXPECT_EQ(failure.Number, 453);
    EXPECT_STREQ(failure.Description, L"Can't find entry point GetCommTimeout in ACGReader330");
    EXPECT_EQ(failure.LastDllError, ScriptedReader::MissingError);
    EXPECT_EQ(timeout, 5);

    EXPECT_FALSE(dll.GetCommTimeout(1, timeout));
    EXPECT_EQ(timeout, 1234);
}

TEST(ReaderDLLTest, SettingsReadBackComeThrough)
{
    ScriptedReader reader;
    const ReaderDLL dll = reader.DLL();
    uint8_t protocol = 0;
    int32_t baudRate = 0;
    std::wstring id;
    EXPECT_FALSE(dll.GetCommProtocol(7, protocol));
    EXPECT_FALSE(dll.GetCommBaudRate(7, baudRate));
    EXPECT_FALSE(dll.GetDeviceID(8, id));
    EXPECT_EQ(protocol, 1);
    EXPECT_EQ(baudRate, 57600);
    EXPECT_EQ(id, L"ID 7");
    EXPECT_EQ(reader.Calls,
              (std::vector<std::string>{"GetCommProtocol 7", "GetCommBaudRate 7", "GetDeviceID 8"}));
}

constexpr int32_t BusyError = 16;

ReaderHandle ACG_READER_CALL FailingOpenComm(const char* /*device*/, uint8_t /*autodetect*/,
                                             CommSettings* /*settings*/)
{
#ifdef _WIN32
    SetLastError(BusyError);
#else
    errno = BusyError;
#endif
    return 0;
}

TEST(ReaderDLLTest, SystemErrorIsCapturedAfterACallThatWasMade)
{
    const ReaderDLL dll([](ReaderFunction) {
        EntryPoint entry;
        entry.Address = reinterpret_cast<EntryPoint::Function>(FailingOpenComm);
        return entry;
    });
    CommSettings settings;
    ReaderHandle comm = 1;
    const Failure failure = dll.OpenComm(L"com1", 0, settings, comm);
    EXPECT_FALSE(failure);
    EXPECT_EQ(failure.LastDllError, BusyError);
    EXPECT_EQ(comm, 0U);
}

TEST(ReaderDLLTest, TextIsAnsiInTheLibrary)
{
    EXPECT_EQ(ToAnsi(L"caf\u00e9 \u20ac\u0153\u0178\u0081 \u0394"), "caf\xe9 \x80\x9c\x9f\x81 ?");
    for (int code = 0; code < 256; ++code) {
        const std::string ansi(1, static_cast<char>(code));
        EXPECT_EQ(ToAnsi(FromAnsi(ansi)), ansi) << code;
    }
    EXPECT_EQ(ByteString(nullptr).Bytes(), "");
}

} // namespace
} // namespace acg
