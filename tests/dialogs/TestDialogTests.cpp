// The test dialog, played without a window.
#include "platform/AnsiText.h"
#include "tests/dialogs/DialogTest.h"

namespace acg
{

namespace
{

struct Lines {
    std::wstring English;
    std::wstring French;
};

// What the successful test calls and writes.
const std::vector<std::string> AllCalls = {
    "OpenComm COM1 0 9600 0", "SetCommTimeout 17 2200", "GetCommProtocol 17",
    "GetCommBaudRate 17",     "GetCommTimeout 17",      "DetectReader 17",
    "OpenReader 17 65 0",     "GetDeviceID 34",         "GetReaderType 34"};
const Lines AllLines[] = {
    {L"Starting the test.", L"Début du test."},
    {L"Opening communication port COM1, no autodetect. Baud rate: 9600, ASCII protocol...",
     L"Ouverture du port de communication COM1, pas d'auto-détection. Vitesse : 9600 bauds, protocole "
     L"ASCII..."},
    {L"Communication port open. Baud rate: 57600, binary protocol, timeout: 1234 ms",
     L"Ouvert. Vitesse : 57600 bauds, protocole binaire, timeout : 1234 ms"},
    {L"Detecting encoders...", L"Détection des encodeurs..."},
    {L"3 encoder(s) found. Encoder ID to test: 65", L"3 encodeur(s) trouvé(s). ID de l'encodeur testé : 65"},
    {L"Opening the communication with encoder...", L"Ouverture de communication avec l'encodeur..."},
    {L"Encoder DeviceID: ID 7", L"DeviceID de l'encodeur : ID 7"},
    {L"Encoder type: MultiISO 2.5", L"Type de l'encodeur : MultiISO 2.5"},
    {L"Closing communication with the encoder...", L"Fermeture de la communication avec l'encodeur..."},
    {L"Closing the communication port...", L"Fermeture du port de communication..."}};

class TestDialogTest : public DialogTest
{
protected:
    TestDialogTest() { reader.Readers = std::string("ABC\0D", 5); }

    /// Runs the test with the settings that the configuration dialog shows.
    std::wstring Log(const std::wstring& language)
    {
        std::wstring log;
        const auto playTest = [&](Form& form) {
            EXPECT_EQ(form.TimerInterval(), 1000);
            Press(form, "cmdOK"); // it is still disabled
            form.OnTimer();
            EXPECT_EQ(form.TimerInterval(), 0);
            EXPECT_TRUE(form.IsOpen() && form.HasWorkingCloseBox());
            log = Named(form, "txtLog").Text();
            Press(form, "cmdOK");
            EXPECT_FALSE(form.IsOpen());
        };
        reader.Forget();
        Configure([](Form& form) { Press(form, "cmdTest"); }, playTest, language);
        return log;
    }

    /// The test ends after that many of all calls and lines, with the last ones of the closing calls.
    void ExpectEnd(ptrdiff_t calls, ptrdiff_t closing, size_t lines, const Lines& end)
    {
        const std::vector<std::string> closings = {"CloseReader 34", "CloseComm 17"};
        std::vector<std::string> expectedCalls(AllCalls.begin(), AllCalls.begin() + calls);
        expectedCalls.insert(expectedCalls.end(), closings.end() - closing, closings.end());
        Lines expected;
        for (size_t line = 0; line < lines; ++line) {
            expected.English += AllLines[line].English + L"\r\n";
            expected.French += AllLines[line].French + L"\r\n";
        }
        EXPECT_EQ(Log(L"francais"), expected.French + end.French);
        EXPECT_EQ(Log(L"english"), expected.English + end.English);
        EXPECT_EQ(reader.Calls, expectedCalls);
    }
};

TEST_F(TestDialogTest, EachExitClosesWhatIsOpenAndEndsInTheLog)
{
    encoder.Parameters(L"Autodetect=0");
    ExpectEnd(9, 2, 10, {L"\r\n<< Successful test >>\r\n", L"\r\n<< Test réussi >>\r\n"});
    const std::tuple<ReaderFunction, int, int, size_t> missing[] = {
        {ReaderFunction::OpenComm, 0, 0, 2},        {ReaderFunction::SetCommTimeout, 1, 1, 2},
        {ReaderFunction::GetCommProtocol, 2, 1, 2}, {ReaderFunction::GetCommBaudRate, 3, 1, 2},
        {ReaderFunction::GetCommTimeout, 4, 1, 2},  {ReaderFunction::DetectReader, 5, 1, 4},
        {ReaderFunction::OpenReader, 6, 1, 6},      {ReaderFunction::GetReaderType, 8, 2, 7}};
    for (const auto& [function, calls, closing, lines] : missing) {
        reader.Missing = {function};
        const std::wstring why = L"Can't find entry point " + FromAnsi(Name(function)) + L" in ACGReader330";
        ExpectEnd(calls, closing, lines, {L"Error 453: " + why, L"Erreur 453 : " + why});
    }
    reader.Missing.clear();
    const auto expectRefusal = [this](int calls, int closing, size_t lines, const Lines& reason) {
        ExpectEnd(calls, closing, lines,
                  {reason.English + L"\r\n\r\n<< Test failed >>\r\n",
                   reason.French + L"\r\n\r\n<< Echec du test >>\r\n"});
    };
    reader.Reader = 0;
    expectRefusal(7, 1, 6, {L"Unable to access to the encoder.", L"Impossible d'accéder à l'encodeur."});
    reader.Readers = std::string("\0A", 2);
    expectRefusal(6, 1, 4, {L"No encoder found.", L"Aucun encodeur trouvé."});
    reader.Comm = 0;
    expectRefusal(
        1, 0, 2,
        {L"Failed to open the communication port.", L"Impossible d'ouvrir le port de communications."});
}

TEST_F(TestDialogTest, LogNamesTheDetectionFillsInTurnCountsUpTo255ReadersAndNeedsNoDeviceId)
{
    reader.Readers = std::string(300, '\xFE');
    reader.Missing = {ReaderFunction::GetDeviceID, ReaderFunction::CloseReader};
    const std::tuple<const wchar_t*, const wchar_t*, std::wstring> modes[] = {
        {L"1", L"english", L"normal autodetection"},
        {L"2", L"english", L"fast autodetection"},
        {L"1", L"francais", L"auto-détection normale"},
        {L"2", L"francais", L"auto-détection rapide"}};
    for (const auto& [number, language, mode] : modes) {
        encoder.Parameters(std::wstring(L"Device=%2%2;Autodetect=") + number);
        const std::wstring log = Log(language);
        const bool isFrench = log.starts_with(L"Début");
        EXPECT_NE(log.find(L" " + mode + mode + L", " + mode + L"..."), log.npos);
        EXPECT_NE(log.find(isFrench ? L"\r\n255 encodeur" : L"\r\n255 encoder"), log.npos);
        EXPECT_NE(log.find(isFrench ? L"DeviceID de l'encodeur : \r\n" : L"DeviceID: \r\n"), log.npos);
        EXPECT_EQ(reader.Calls.back(), "CloseComm 17");
    }
}

} // namespace
} // namespace acg
