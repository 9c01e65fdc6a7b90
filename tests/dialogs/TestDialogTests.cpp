// The test dialog, played without a window.
#include "platform/AnsiText.h"
#include "tests/dialogs/DialogTest.h"

namespace acg
{

namespace
{

// What the successful test calls, and writes in both languages.
const std::vector<std::string> AllCalls = {
    "OpenComm COM1 0 9600 0", "SetCommTimeout 17 2200", "GetCommProtocol 17",
    "GetCommBaudRate 17",     "GetCommTimeout 17",      "DetectReader 17",
    "OpenReader 17 65 0",     "GetDeviceID 34",         "GetReaderType 34"};
const std::pair<std::wstring, std::wstring> AllLines[] = {
    {L"Starting the test.", L"D\u00e9but du test."},
    {L"Opening communication port COM1, no autodetect. Baud rate: 9600, ASCII protocol...",
     L"Ouverture du port de communication COM1, pas d'auto-d\u00e9tection. Vitesse : 9600 bauds, "
     L"protocole ASCII..."},
    {L"Communication port open. Baud rate: 57600, binary protocol, timeout: 1234 ms",
     L"Ouvert. Vitesse : 57600 bauds, protocole binaire, timeout : 1234 ms"},
    {L"Detecting encoders...", L"D\u00e9tection des encodeurs..."},
    {L"3 encoder(s) found. Encoder ID to test: 65",
     L"3 encodeur(s) trouv\u00e9(s). ID de l'encodeur test\u00e9 : 65"},
    {L"Opening the communication with encoder...", L"Ouverture de communication avec l'encodeur..."},
    {L"Encoder DeviceID: ID 7", L"DeviceID de l'encodeur : ID 7"},
    {L"Encoder type: MultiISO 2.5", L"Type de l'encodeur : MultiISO 2.5"},
    {L"Closing communication with the encoder...", L"Fermeture de la communication avec l'encodeur..."},
    {L"Closing the communication port...", L"Fermeture du port de communication..."}};

class TestDialogTest : public DialogTest
{
protected:
    TestDialogTest()
    {
        encoder.Parameters(L"Autodetect=0");
        reader.Readers = std::string("ABC\0D", 5);
    }

    /// Runs the test with the settings COM1, no detection, 9600 bauds, ASCII, 2200 ms.
    std::wstring Log(const wchar_t* language = L"", uint8_t autoDetect = 0)
    {
        std::wstring log;
        const auto playTest = [&](Form& form) {
            EXPECT_EQ(TextOf(form, "txtLog"), L"");
            EXPECT_FALSE(form.Named("cmdOK").IsEnabled());
            EXPECT_EQ(form.TimerInterval(), 1000);
            frmTest::OfThread().AutoDetect = autoDetect;
            form.OnTimer();
            EXPECT_EQ(form.TimerInterval(), 0);
            EXPECT_TRUE(form.HasWorkingCloseBox);
            log = TextOf(form, "txtLog");
            Press(form, "cmdOK");
            EXPECT_FALSE(form.IsOpen());
        };
        Configure([](Form& form) { Press(form, "cmdTest"); }, playTest, language);
        return log;
    }

    /// The test ends after that many of all calls and lines, with the last ones of the closing calls.
    void ExpectEnd(size_t calls, size_t closing, size_t lines, std::wstring english, std::wstring french)
    {
        for (size_t i = lines; i-- > 0;) {
            english.insert(0, AllLines[i].first + L"\r\n");
            french.insert(0, AllLines[i].second + L"\r\n");
        }
        reader.Forget();
        EXPECT_EQ(Log(L"english"), english);
        std::vector<std::string> expected(AllCalls.begin(),
                                          AllCalls.begin() + static_cast<std::ptrdiff_t>(calls));
        for (; closing > 0; --closing) {
            expected.emplace_back(closing == 2 ? "CloseReader 34" : "CloseComm 17");
        }
        EXPECT_EQ(reader.Calls, expected);
        EXPECT_EQ(Log(L"FRANCAIS"), french);
    }
};

TEST_F(TestDialogTest, EachExitEndsInTheLogInBothLanguages)
{
    ExpectEnd(9, 2, 10, L"\r\n<< Successful test >>\r\n", L"\r\n<< Test r\u00e9ussi >>\r\n");
    const std::tuple<ReaderFunction, size_t, size_t, size_t> missing[] = {
        {ReaderFunction::OpenComm, 0, 0, 2},        {ReaderFunction::SetCommTimeout, 1, 1, 2},
        {ReaderFunction::GetCommProtocol, 2, 1, 2}, {ReaderFunction::GetCommBaudRate, 3, 1, 2},
        {ReaderFunction::GetCommTimeout, 4, 1, 2},  {ReaderFunction::DetectReader, 5, 1, 4},
        {ReaderFunction::OpenReader, 6, 1, 6},      {ReaderFunction::GetReaderType, 8, 2, 7}};
    for (const auto& [function, calls, closing, lines] : missing) {
        const std::wstring cause =
            L"Can't find entry point " + FromAnsi(Name(function)) + L" in ACGReader330";
        reader.Missing = {function};
        ExpectEnd(calls, closing, lines, L"Error 453: " + cause, L"Erreur 453 : " + cause);
        reader.Missing.clear();
    }
    const std::wstring failed = L"\r\n\r\n<< Test failed >>\r\n";
    const std::wstring failedInFrench = L"\r\n\r\n<< Echec du test >>\r\n";
    reader.Reader = 0;
    ExpectEnd(7, 1, 6, L"Unable to access to the encoder." + failed,
              L"Impossible d'acc\u00e9der \u00e0 l'encodeur." + failedInFrench);
    reader.Readers = std::string("\0A", 2);
    ExpectEnd(6, 1, 4, L"No encoder found." + failed, L"Aucun encodeur trouv\u00e9." + failedInFrench);
    reader.Comm = 0;
    ExpectEnd(1, 0, 2, L"Failed to open the communication port." + failed,
              L"Impossible d'ouvrir le port de communications." + failedInFrench);
}

TEST_F(TestDialogTest, MissingDeviceIdLeavesItsLineEmptyAndTheTestGoesOn)
{
    reader.Missing = {ReaderFunction::GetDeviceID, ReaderFunction::CloseReader};
    const std::wstring log = Log();
    EXPECT_NE(log.find(L"\r\nEncoder DeviceID: \r\nEncoder type: MultiISO 2.5\r\n"), log.npos);
    EXPECT_TRUE(log.ends_with(L"...\r\n\r\n<< Successful test >>\r\n"));
}

TEST_F(TestDialogTest, LogNamesTheDetectionFillsInTurnAndCountsUpTo255Readers)
{
    encoder.Parameters(L"Device=%2%2");
    reader.Readers = std::string(300, '\xFE');
    const std::pair<uint8_t, std::wstring> modes[] = {
        {uint8_t{1}, L"port normal autodetectionnormal autodetection, normal autodetection..."},
        {uint8_t{2}, L"port fast autodetectionfast autodetection, fast autodetection..."}};
    for (const auto& [mode, text] : modes) {
        const std::wstring log = Log(L"", mode);
        EXPECT_NE(log.find(text), log.npos);
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
