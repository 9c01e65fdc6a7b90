// The test dialog, played without a window.
#include "tests/dialogs/DialogTest.h"

namespace acg
{

namespace
{

/// What befalls the test, and the calls and the lines that come of it.
struct ExitCase {
    const char* Name;
    std::function<void(ScriptedReader&)> Prepare;
    size_t Calls; ///< of the successful run's, before the closing
    std::vector<std::string> Closing;
    size_t Lines; ///< of the successful run's, before the last ones
    std::wstring English;
    std::wstring French;

    friend std::ostream& operator<<(std::ostream& out, const ExitCase& row) { return out << row.Name; }
};

class TestDialogExits : public DialogTest, public testing::WithParamInterface<ExitCase>
{
protected:
    /// Runs the test in that language, with the settings COM1, no detection, 9600 bauds, ASCII, 2200 ms.
    std::wstring Log(
        std::wstring_view language, const Player& before = [](Form&) {})
    {
        encoder.Parameters(L"Autodetect=0");
        std::wstring log;
        Configure([](Form& form) { Press(form, "cmdTest"); },
                  [&](Form& form) {
                      EXPECT_EQ(TextOf(form, "txtLog"), L"");
                      EXPECT_FALSE(form.Named("cmdOK").IsEnabled());
                      EXPECT_EQ(form.TimerInterval(), 1000);
                      before(form);
                      form.OnTimer();
                      EXPECT_EQ(form.TimerInterval(), 0);
                      EXPECT_TRUE(form.HasWorkingCloseBox);
                      log = TextOf(form, "txtLog");
                      Press(form, "cmdOK");
                      EXPECT_FALSE(form.IsOpen());
                  },
                  language);
        return log;
    }
};

const std::vector<std::string> AllCalls = {
    "OpenComm COM1 0 9600 0", "SetCommTimeout 17 2200", "GetCommProtocol 17",
    "GetCommBaudRate 17",     "GetCommTimeout 17",      "DetectReader 17",
    "OpenReader 17 65 0",     "GetDeviceID 34",         "GetReaderType 34"};

const std::vector<std::wstring> EnglishLines = {
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

const std::vector<std::wstring> FrenchLines = {
    L"D\u00e9but du test.",
    L"Ouverture du port de communication COM1, pas d'auto-d\u00e9tection. Vitesse : 9600 bauds, protocole "
    L"ASCII...",
    L"Ouvert. Vitesse : 57600 bauds, protocole binaire, timeout : 1234 ms",
    L"D\u00e9tection des encodeurs...",
    L"3 encodeur(s) trouv\u00e9(s). ID de l'encodeur test\u00e9 : 65",
    L"Ouverture de communication avec l'encodeur...",
    L"DeviceID de l'encodeur : ID 7",
    L"Type de l'encodeur : MultiISO 2.5",
    L"Fermeture de la communication avec l'encodeur...",
    L"Fermeture du port de communication..."};

std::wstring FirstLines(const std::vector<std::wstring>& lines, size_t count)
{
    std::wstring text;
    for (size_t i = 0; i < count; ++i) {
        text += lines.at(i) + L"\r\n";
    }
    return text;
}

TEST_P(TestDialogExits, EndInTheLogInBothLanguages)
{
    const ExitCase& row = GetParam();
    reader.Readers = std::string("ABC\0D", 5);
    row.Prepare(reader);
    EXPECT_EQ(Log(L"english"), FirstLines(EnglishLines, row.Lines) + row.English);

    std::vector<std::string> calls(AllCalls.begin(),
                                   AllCalls.begin() + static_cast<std::ptrdiff_t>(row.Calls));
    std::erase_if(calls, [&row](const std::string& call) { return call.starts_with(row.Name); });
    calls.insert(calls.end(), row.Closing.begin(), row.Closing.end());
    EXPECT_EQ(reader.Calls, calls);
    EXPECT_EQ(Log(L"FRANCAIS"), FirstLines(FrenchLines, row.Lines) + row.French);
}

std::function<void(ScriptedReader&)> Missing(ReaderFunction function)
{
    return [function](ScriptedReader& reader) { reader.Missing(function); };
}

/// A function that is missing: no call of it, an error line and no banner.
ExitCase CallFails(ReaderFunction function, size_t calls, size_t lines, std::vector<std::string> closing)
{
    const std::string name = Name(function);
    const std::wstring cause =
        L"Can't find entry point " + std::wstring(name.begin(), name.end()) + L" in ACGReader330";
    return {Name(function),         Missing(function),       calls, std::move(closing), lines,
            L"Error 453: " + cause, L"Erreur 453 : " + cause};
}

const wchar_t* const Failed = L"\r\n\r\n<< Test failed >>\r\n";
const wchar_t* const FailedInFrench = L"\r\n\r\n<< Echec du test >>\r\n";

const ExitCase ExitCases[] = {
    {"Success",
     [](ScriptedReader&) {},
     9,
     {"CloseReader 34", "CloseComm 17"},
     10,
     L"\r\n<< Successful test >>\r\n",
     L"\r\n<< Test r\u00e9ussi >>\r\n"},
    CallFails(ReaderFunction::OpenComm, 0, 2, {}),
    {"LinkRefused",
     [](ScriptedReader& reader) { reader.Comm = 0; },
     1,
     {},
     2,
     std::wstring(L"Failed to open the communication port.") + Failed,
     std::wstring(L"Impossible d'ouvrir le port de communications.") + FailedInFrench},
    CallFails(ReaderFunction::SetCommTimeout, 1, 2, {"CloseComm 17"}),
    CallFails(ReaderFunction::GetCommProtocol, 2, 2, {"CloseComm 17"}),
    CallFails(ReaderFunction::GetCommBaudRate, 3, 2, {"CloseComm 17"}),
    CallFails(ReaderFunction::GetCommTimeout, 4, 2, {"CloseComm 17"}),
    CallFails(ReaderFunction::DetectReader, 5, 4, {"CloseComm 17"}),
    {"NoReader",
     [](ScriptedReader& reader) { reader.Readers = std::string("\0A", 2); },
     6,
     {"CloseComm 17"},
     4,
     std::wstring(L"No encoder found.") + Failed,
     std::wstring(L"Aucun encodeur trouv\u00e9.") + FailedInFrench},
    CallFails(ReaderFunction::OpenReader, 6, 6, {"CloseComm 17"}),
    {"ReaderRefused",
     [](ScriptedReader& reader) { reader.Reader = 0; },
     7,
     {"CloseComm 17"},
     6,
     std::wstring(L"Unable to access to the encoder.") + Failed,
     std::wstring(L"Impossible d'acc\u00e9der \u00e0 l'encodeur.") + FailedInFrench},
    CallFails(ReaderFunction::GetReaderType, 8, 7, {"CloseReader 34", "CloseComm 17"}),
};

INSTANTIATE_TEST_SUITE_P(All, TestDialogExits, testing::ValuesIn(ExitCases),
                         [](const auto& row) { return std::string(row.param.Name); });

using TestDialogTest = TestDialogExits;

TEST_F(TestDialogTest, MissingDeviceIdLeavesItsLineEmptyAndTheTestGoesOn)
{
    reader.Missing(ReaderFunction::GetDeviceID);
    reader.Missing(ReaderFunction::CloseReader);
    const std::wstring log = Log(L"");
    EXPECT_NE(log.find(L"\r\nEncoder DeviceID: \r\nEncoder type: MultiISO 2.5\r\n"), std::wstring::npos);
    EXPECT_TRUE(log.ends_with(L"...\r\n\r\n<< Successful test >>\r\n"));
}

TEST_F(TestDialogTest, CountsUpTo255Readers)
{
    reader.Readers = std::string(300, '\xFE');
    EXPECT_NE(Log(L"").find(L"255 encoder(s) found. Encoder ID to test: 254"), std::wstring::npos);
}

TEST_F(TestDialogTest, ModeTextNamesTheDetectionAndFillsInTurn)
{
    encoder.Parameters(L"Device=%2%2");
    frmTest& test = frmTest::OfThread();
    const std::pair<uint8_t, std::wstring> modes[] = {{uint8_t{1}, L"normal autodetection"},
                                                      {uint8_t{2}, L"fast autodetection"}};
    for (const auto& [mode, text] : modes) {
        const std::wstring log = Log(L"", [&, mode = mode](Form&) { test.AutoDetect = mode; });
        EXPECT_NE(log.find(L"port " + text + text + L", " + text + L"..."), std::wstring::npos);
    }
}

TEST_F(TestDialogTest, ClosedBeforeTheFirstTickNoTestRuns)
{
    Configure([](Form& form) { Press(form, "cmdTest"); }, [](Form& form) { form.PressCloseBox(); });
    EXPECT_TRUE(reader.Calls.empty());
}

} // namespace
} // namespace acg
