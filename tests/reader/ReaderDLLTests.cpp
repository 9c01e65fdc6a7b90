// The functions of the library, and their texts.
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
