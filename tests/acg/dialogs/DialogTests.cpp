// The dialogs, played without a window.
#include "acg/dialogs/frmConfigure.h"
#include "acg/forms/HeadlessPlayer.h"
#include "acg/platform/AnsiText.h"
#include "tests/ScriptedReader.h"

#include <regex>

using namespace acg;

namespace
{

/// What a form and its controls show. "-" is what is disabled, "~" what has the colour of menus.
std::wstring Texts(Form& form)
{
    std::wstring texts = form.Caption + L'/';
    for (const Control& control : form.Controls()) {
        texts += control.IsEnabled() ? L"" : L"-";
        texts += control.Background().From == Colour::Source::Menu ? L"~" : L"";
        for (const std::wstring& line : control.Lines()) {
            texts += line + L',';
        }
        texts += (control.Lines().empty() ? control.Text() : L"") + L'/';
    }
    return std::regex_replace(texts, std::wregex(L"\r\n"), L"/");
}

struct Row {
    const char* Name;
    const wchar_t *Language, *Parameters, *Actions;
    const wchar_t* Shown; ///< a regular expression
};

class DialogTest : public EncoderTest, public testing::WithParamInterface<Row>
{
protected:
    /// The dialogs outlive their windows, and keep what the last ones left.
    void SetUp() override
    {
        static_cast<DialogSettings&>(frmConfigure::OfThread()) = {.Protocol = 1};
        frmConfigure::OfThread().OKPressed = true;
        static_cast<DialogSettings&>(frmTest::OfThread()) = {.AutoDetect = 2, .Timeout = 700};
    }

    /// Puts texts into fields, picks lines by number and presses buttons, in the end the close box.
    void Configure(const wchar_t* language, const std::wstring& actions)
    {
        reader.Forget();
        HeadlessPlayer() = [&](Form& form) {
            encoder.Configure(L"another"); // nothing happens while a dialog is open
            if (form.OnTimer) {
                EXPECT_EQ(form.TimerInterval(), 1000);
                form.DefaultButton->Press(); // it is still disabled
                form.OnTimer();
                EXPECT_TRUE(form.IsOpen() && form.HasWorkingCloseBox() && form.TimerInterval() == 0);
                shown += Texts(form);
                for (const std::string& call : reader.Calls) {
                    shown += FromAnsi(call) + L'/';
                }
                EXPECT_FALSE((form.DefaultButton->Press(), form.IsOpen()));
                return;
            }
            shown = Texts(form);
            std::wistringstream stream(actions);
            for (std::wstring name, text; std::getline(std::getline(stream, name, L'='), text, L';');) {
                const auto nameOf = [](const Control& one) { return std::string(one.Look.Name); };
                Control& control = *std::ranges::find(form.Controls(), ToAnsi(name), nameOf);
                control.Press();
                const bool isList = control.Look.Kind == ControlKind::DropDownList;
                isList ? control.Pick(text[0] - L'0') : control.Edit(text);
            }
            form.PressCloseBox();
        };
        shown += std::to_wstring(encoder.Configure(language));
        HeadlessPlayer() = nullptr;
        EXPECT_EQ(Last(), Clean(L"Configure"));
        const std::wregex names(L"(.*\r\n)*Device=|\r\n[A-Z][a-z ]+=");
        shown += std::regex_replace(encoder.Parameters(), names, L",") + L',' +
                 std::to_wstring(frmConfigure::OfThread().Protocol);
    }

    std::wstring shown; ///< by both dialogs, with the calls of the test, the result, settings and protocol
};

TEST_P(DialogTest, ShowsAndStores)
{
    const auto& [name, language, parameters, actions, pattern] = GetParam();
    reader.Readers = std::string("ABC\0D", 5);
    encoder.Parameters(parameters);
    Configure(language, actions);
    EXPECT_TRUE(std::regex_search(shown, std::wregex(pattern))) << testing::PrintToString(shown);
    // With no player it can't be shown, and the last button decides.
    EXPECT_EQ(encoder.Configure(L""), shown.find(L"/1,") == std::wstring::npos ? sceSuccess : sceCanceled);
}

const Row Rows[] = {
    {"EnglishConfiguration", L"français", L"Autodetect=0", L"",
     L"ACG Encoder Configuration/Communication/&Communication port:/COM1,COM2,COM3,COM4,/&Automatic "
     L"detection:/Disabled,Normal detection,Fast detection,/&Speed \\(bauds\\):/9600,19200,38400,57600,"
     L"115200,/&Protocol:/ASCII,Binary,/Ti&meout \\(ms\\):/2200/OK/Default values/&Test settings.../Cancel/"},
    {"FrenchConfiguration", L"FrAnCaIs", L"Autodetect=0", L"",
     L"Configuration de l'encodeur ACG/Communication/&Port de communication :/COM1,COM2,COM3,COM4,/"
     L"&Détection automatique :/Désactivée,Normale,Rapide,/&Vitesse en bauds :/9600,19200,38400,57600,115200,"
     L"/P&rotocole :/ASCII,Binaire,/Ti&meout \\(ms\\) :/2200/OK/Valeurs d'usine/&Test encodeur.../Annuler/"},
    {"EnglishTest", L"", L"Autodetect=0", L"cmdTest=;",
     L"ACG Encoder Test/Starting the test./Opening communication port COM1, no autodetect. Baud rate: 9600, "
     L"binary protocol.../Communication port open. Baud rate: 57600, binary protocol, timeout: 1234 ms/"
     L"Detecting encoders.../3 encoder\\(s\\) found. Encoder ID to test: 65/Opening the communication with "
     L"encoder.../Encoder DeviceID: ID 7/Encoder type: MultiISO 2.5/Closing communication with the "
     L"encoder.../Closing the communication port...//<< Successful test >>//OK/"},
    {"FrenchTest", L"francais", L"Autodetect=0", L"cboProtocol=0;cmdTest=;",
     L"Test de l'encodeur ACG/Début du test./Ouverture du port de communication COM1, pas d'auto-détection. "
     L"Vitesse : 9600 bauds, protocole ASCII.../Ouvert. Vitesse : 57600 bauds, protocole binaire, timeout : "
     L"1234 ms/Détection des encodeurs.../3 encodeur\\(s\\) trouvé\\(s\\). ID de l'encodeur testé : 65/"
     L"Ouverture de communication avec l'encodeur.../DeviceID de l'encodeur : ID 7/Type de l'encodeur : "
     L"MultiISO 2.5/Fermeture de la communication avec l'encodeur.../Fermeture du port de communication...//"
     L"<< Test réussi >>//OK/"},
    {"CallsOfTheTest", L"", L"Autodetect=0", L"cboProtocol=0;cmdTest=;txtTimeout=12a;cmdOK=;",
     L"/OpenComm COM1 0 9600 0/SetCommTimeout 17 2200/GetCommProtocol 17/GetCommBaudRate 17/GetCommTimeout "
     L"17/DetectReader 17/OpenReader 17 65 0/GetDeviceID 34/GetReaderType 34/CloseReader 34/CloseComm 17/"
     L"0,COM1,0,9600,2200,0"},
    {"TooLargeTimeout", L"", L"Device=%2%2;Baud rate=4800", L"txtTimeout=2147483648;cmdTest=;cmdOK=;",
     L" (normal autodetection){2}, normal autodetection.../.* %2%2 1 9600 1/.* 17 700/.*%2,1,9600,2200"},
    {"NoTimeout", L"francais", L"Device=CoM4;Autodetect=2;Baud rate=115200", L"txtTimeout=;cmdTest=;cmdOK=;",
     L" COM4, auto-détection rapide.../.* COM4 2 115200 1/.* 17 700/.*/0,COM4,2,115200,2200"},
    {"BlanksAroundTheTimeout", L"", L"",
     L"cboDevice= port ;cboAutoDetect=0;cboBaudrate=3;txtTimeout=\t 0500 ;cmdTest=;cmdOK=;",
     L"  port , no autodetect.* 57600, binary .*  port  0 57600 1/.* 17 500/.*/0, port ,0,57600,500"},
    {"CloseBox", L"", L"Device=;Autodetect=2", L"txtTimeout=-12;cmdTest=;",
     L" , fast autodetection.../.*  2 9600 1/.* 17 -12/.*/0,,2,9600,2200"},
    {"UnknownDetection", L"", L"Device=;Autodetect=3", L"cmdTest=;txtTimeout=-12;cmdOK=;",
     L"  2 9600 1/.* 17 2200/.*/0,,3,9600,-12"},
    {"DefaultValues", L"francais", L"Device=x;Autodetect=0;Baud rate=19200;Timeout=9",
     L"cmdDefault=;cboBaudrate=4;cmdTest=;cmdOK=;",
     L" COM1, auto-détection normale.../.* COM1 1 9600 0/.* 17 2200/.*/0,COM1,1,9600,2200,0"},
    {"DetectionAndCancel", L"", L"", L"txtTimeout=1;cmdCancel=;",
     L"/-&Speed.*/-~9600.*/-&Protocol.*/-~ASCII.*/1,com1,1,9600,2200,1"}};
INSTANTIATE_TEST_SUITE_P(Dialog, DialogTest, testing::ValuesIn(Rows),
                         [](const auto& row) { return row.param.Name; });

TEST_F(DialogTest, EachExitOfTheTestClosesWhatIsOpenAndEndsInTheLog)
{
    const auto expect = [this](const wchar_t* language, const std::wstring& end, int calls) {
        Configure(language, L"cmdTest=;");
        EXPECT_TRUE(std::regex_search(shown, std::wregex(end + L"/OK/"))) << testing::PrintToString(shown);
        EXPECT_EQ(std::ssize(reader.Calls), calls) << testing::PrintToString(end);
    };
    for (const auto& [call, calls] :
         {std::pair(1, 0), {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, {7, 7}, {9, 10}}) {
        reader.Injected = {.FromCall = call, .Times = 1}; // it isn't made, the closing ones are
        expect(L"english", L"/Error 453: Can't find entry point \\w+ in ACGReader330", calls);
        expect(L"francais", L"/Erreur 453 : Can't find entry point \\w+ in ACGReader330", calls);
    }
    reader.Injected = {};
    reader.Missing = {ReaderFunction::GetDeviceID, ReaderFunction::CloseReader};
    reader.Readers = std::string(300, '\xFE');
    expect(L"english", L"/255 encoder.*: 254/.*/Encoder DeviceID: /.*/<< Successful test >>/", 9);
    reader.Reader = 0;
    expect(L"english", L"/Unable to access to the encoder.//<< Test failed >>/", 8);
    expect(L"francais", L"/Impossible d'accéder à l'encodeur.//<< Echec du test >>/", 8);
    reader.Readers = std::string("\0A", 2);
    expect(L"english", L"/No encoder found.//<< Test failed >>/", 7);
    expect(L"francais", L"/Aucun encodeur trouvé.//<< Echec du test >>/", 7);
    reader.Comm = 0;
    expect(L"english", L"/Failed to open the communication port.//<< Test failed >>/", 1);
    expect(L"francais", L"/Impossible d'ouvrir le port de communications.//<< Echec du test >>/", 1);
}

} // namespace
