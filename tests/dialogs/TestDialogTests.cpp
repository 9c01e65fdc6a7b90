// The test dialog, played without a window.
#include "platform/AnsiText.h"
#include "tests/dialogs/DialogTest.h"

namespace acg
{

namespace
{

// What the successful test calls and writes.
const std::vector<std::string> AllCalls = {
    "OpenComm COM1 0 9600 0", "SetCommTimeout 17 2200", "GetCommProtocol 17",
    "GetCommBaudRate 17",     "GetCommTimeout 17",      "DetectReader 17",
    "OpenReader 17 65 0",     "GetDeviceID 34",         "GetReaderType 34"};
constexpr const wchar_t* AllLines[] = {
    L"Starting the test.",
    L"Opening communication port COM1, no autodetect. Baud rate: 9600, ASCII protocol...",
    L"Communication port open. Baud rate: 57600, binary protocol, timeout: 1234 ms",
    L"Detecting encoders...",
    L"3 encoder(s) found. Encoder ID to test: 65",
    L"Opening the communication with encoder...",
    L"Encoder DeviceID: ID 7",
    L"Encoder type: MultiISO 2.5",
    L"Closing communication with the encoder...",
    L"Closing the communication port..."};

class TestDialogTest : public DialogTest
{
protected:
    TestDialogTest()
    {
        encoder.Parameters(L"Autodetect=0");
        reader.Readers = std::string("ABC\0D", 5);
    }

    /// Runs the test with the settings that the configuration dialog shows.
    std::wstring Log()
    {
        std::wstring log;
        const auto playTest = [&](Form& form) {
            EXPECT_EQ(form.TimerInterval(), 1000);
            Press(form, "cmdOK"); // it is still disabled
            form.OnTimer();
            EXPECT_EQ(form.TimerInterval(), 0);
            EXPECT_TRUE(form.HasWorkingCloseBox());
            log = TextOf(form, "txtLog");
            EXPECT_TRUE(form.IsOpen());
            Press(form, "cmdOK");
            EXPECT_FALSE(form.IsOpen());
        };
        Configure([](Form& form) { Press(form, "cmdTest"); }, playTest);
        return log;
    }

    /// The test ends after that many of all calls and lines, with the last ones of the closing calls.
    void ExpectEnd(size_t calls, size_t closing, size_t lines, const std::wstring& end)
    {
        std::wstring expectedLog;
        for (size_t line = 0; line < lines; ++line) {
            expectedLog += std::wstring(AllLines[line]) + L"\r\n";
        }
        std::vector<std::string> expectedCalls = AllCalls;
        expectedCalls.resize(calls);
        for (; closing > 0; --closing) {
            expectedCalls.emplace_back(closing == 2 ? "CloseReader 34" : "CloseComm 17");
        }
        reader.Forget();
        EXPECT_EQ(Log(), expectedLog + end);
        EXPECT_EQ(reader.Calls, expectedCalls);
    }
};

TEST_F(TestDialogTest, EachExitClosesWhatIsOpenAndEndsInTheLog)
{
    ExpectEnd(9, 2, 10, L"\r\n<< Successful test >>\r\n");
    const std::tuple<ReaderFunction, size_t, size_t, size_t> missing[] = {
        {ReaderFunction::OpenComm, 0, 0, 2},        {ReaderFunction::SetCommTimeout, 1, 1, 2},
        {ReaderFunction::GetCommProtocol, 2, 1, 2}, {ReaderFunction::GetCommBaudRate, 3, 1, 2},
        {ReaderFunction::GetCommTimeout, 4, 1, 2},  {ReaderFunction::DetectReader, 5, 1, 4},
        {ReaderFunction::OpenReader, 6, 1, 6},      {ReaderFunction::GetReaderType, 8, 2, 7}};
    for (const auto& [function, calls, closing, lines] : missing) {
        reader.Missing = {function};
        ExpectEnd(calls, closing, lines,
                  L"Error 453: Can't find entry point " + FromAnsi(Name(function)) + L" in ACGReader330");
        reader.Missing.clear();
    }
    const std::wstring failed = L"\r\n\r\n<< Test failed >>\r\n";
    reader.Reader = 0;
    ExpectEnd(7, 1, 6, L"Unable to access to the encoder." + failed);
    reader.Readers = std::string("\0A", 2);
    ExpectEnd(6, 1, 4, L"No encoder found." + failed);
    reader.Comm = 0;
    ExpectEnd(1, 0, 2, L"Failed to open the communication port." + failed);
}

TEST_F(TestDialogTest, MissingDeviceIdLeavesItsLineEmptyAndTheTestGoesOn)
{
    reader.Missing = {ReaderFunction::GetDeviceID, ReaderFunction::CloseReader};
    const std::wstring log = Log();
    EXPECT_NE(log.find(L"\r\nEncoder DeviceID: \r\nEncoder type: MultiISO 2.5\r\n"), log.npos);
    EXPECT_TRUE(log.ends_with(L"...\r\n\r\n<< Successful test >>\r\n"));
    EXPECT_EQ(reader.Calls.back(), "CloseComm 17");
}

TEST_F(TestDialogTest, LogNamesTheDetectionFillsInTurnAndCountsUpTo255Readers)
{
    reader.Readers = std::string(300, '\xFE');
    const std::pair<const wchar_t*, const wchar_t*> modes[] = {{L"1", L"normal autodetection"},
                                                               {L"2", L"fast autodetection"}};
    for (const auto& [number, mode] : modes) {
        encoder.Parameters(std::wstring(L"Device=%2%2;Autodetect=") + number);
        const std::wstring log = Log();
        EXPECT_NE(log.find(std::wstring(L"port ") + mode + mode + L", " + mode + L"..."), log.npos);
        EXPECT_NE(log.find(L"255 encoder(s) found. Encoder ID to test: 254"), log.npos);
    }
}

TEST_F(TestDialogTest, ClosedBeforeTheFirstTickNoTestRuns)
{
    const auto playTest = [this](Form& form) {
        frmTest::OfThread().Show(reader.DLL(), nullptr); // nothing more is shown
        form.PressCloseBox();
    };
    Configure([](Form& form) { Press(form, "cmdTest"); }, playTest);
    EXPECT_TRUE(reader.Calls.empty());
}

} // namespace
} // namespace acg
