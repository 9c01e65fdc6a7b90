#include "acg/dialogs/frmTest.h"

#include "abi/ACGReader330.h"
#include "acg/encoder/NumberReading.h"

#include <algorithm>
#include <utility>

namespace acg
{

namespace
{

constexpr int StartDelay = 1000; // milliseconds
constexpr Colour LogBackground = {Colour::Source::Own, 0xF8, 0xF8, 0xF0};
constexpr wchar_t NewLine[] = L"\r\n";

/// Detection returns at most this many readers.
constexpr size_t MaxReaders = 255;

constexpr struct {
    Translated m_sStart{L"Starting the test.", L"Début du test."};
    Translated m_sOpening{L"Opening communication port %1, %2...",
                          L"Ouverture du port de communication %1, %2..."};
    Translated m_sOpenFailed{L"Failed to open the communication port.",
                             L"Impossible d'ouvrir le port de communications."};
    Translated m_sNoAutodetect{L"no autodetect. Baud rate: %1, %2 protocol",
                               L"pas d'auto-détection. Vitesse : %1 bauds, protocole %2"};
    Translated m_sNormalDetect{L"normal autodetection", L"auto-détection normale"};
    Translated m_sFastDetect{L"fast autodetection", L"auto-détection rapide"};
    Translated m_sAscii{L"ASCII", L"ASCII"};
    Translated m_sBinary{L"binary", L"binaire"};
    Translated m_sPortOpen{L"Communication port open. Baud rate: %1, %2 protocol, timeout: %3 ms",
                           L"Ouvert. Vitesse : %1 bauds, protocole %2, timeout : %3 ms"};
    Translated m_sDetecting{L"Detecting encoders...", L"Détection des encodeurs..."};
    Translated m_sNoEncoder{L"No encoder found.", L"Aucun encodeur trouvé."};
    Translated m_sFound{L"%1 encoder(s) found. Encoder ID to test: %2",
                        L"%1 encodeur(s) trouvé(s). ID de l'encodeur testé : %2"};
    Translated m_sOpeningEncoder{L"Opening the communication with encoder...",
                                 L"Ouverture de communication avec l'encodeur..."};
    Translated m_sNoAccess{L"Unable to access to the encoder.", L"Impossible d'accéder à l'encodeur."};
    Translated m_sDeviceID{L"Encoder DeviceID: %1", L"DeviceID de l'encodeur : %1"};
    Translated m_sEncoderType{L"Encoder type: %1", L"Type de l'encodeur : %1"};
    Translated m_sClosingEncoder{L"Closing communication with the encoder...",
                                 L"Fermeture de la communication avec l'encodeur..."};
    Translated m_sClosingPort{L"Closing the communication port...", L"Fermeture du port de communication..."};
    Translated m_sSuccess{L"\r\n<< Successful test >>\r\n", L"\r\n<< Test réussi >>\r\n"};
    Translated m_sFailed{L"\r\n<< Test failed >>\r\n", L"\r\n<< Echec du test >>\r\n"};
    Translated m_sError{L"Error %1: %2", L"Erreur %1 : %2"};
} Texts;

} // namespace

/// The form and its controls, created at each opening.
struct frmTest::Screen {
    frmTest& Owner;
    const ReaderDLL& Reader;

    Form Dialog{{.Width = 6735, .Height = 3825, .FontPoints = 8.25}};
    Control& txtLog = Dialog.Add({"txtLog", ControlKind::Log, {45, 0, 6690, 3150}});
    Control& cmdOK = Dialog.Add({"cmdOK", ControlKind::Button, {2482, 3285, 1770, 420}});

    Screen(frmTest& form, const ReaderDLL& reader) : Owner(form), Reader(reader)
    {
        constexpr Area Margin = {0, 0, 150, 3150};
        constexpr Area Separator = {-630, 3150, 7245 + 630, 0};
        Dialog.Shapes = {{Margin, LogBackground}, {Separator, {Colour::Source::Highlight3D}}};
        Dialog.DefaultButton = &cmdOK;
        txtLog.SetBackground(LogBackground);
        Owner.m_screen = this; // nothing throws any more
    }
    ~Screen() { Owner.m_screen = nullptr; }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
};

/// While it lives the window can't be closed. At its end whatever it has opened is closed, the reader first;
/// then the button can be pressed.
class frmTest::Run
{
public:
    CommHandle Comm = CommHandle::None;
    ReaderHandle Reader = ReaderHandle::None;

    explicit Run(Screen& screen) : m_screen(screen) { m_screen.Dialog.EnableCloseBox(false); }
    ~Run()
    {
        CloseReader();
        CloseComm();
        m_screen.Dialog.EnableCloseBox(true);
        m_screen.cmdOK.Enable(true);
        m_screen.Dialog.SetFocus(m_screen.cmdOK);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    // The test succeeds even if a closing call fails.
    void CloseReader()
    {
        if (Reader != ReaderHandle::None) {
            static_cast<void>(m_screen.Reader.CloseReader(std::exchange(Reader, ReaderHandle::None)));
        }
    }
    void CloseComm()
    {
        if (Comm != CommHandle::None) {
            static_cast<void>(m_screen.Reader.CloseComm(std::exchange(Comm, CommHandle::None)));
        }
    }

private:
    Screen& m_screen;
};

frmTest& frmTest::OfThread()
{
    // Never destroyed: the component may have been unloaded when the thread ends.
    thread_local auto* const dialog = new frmTest;
    return *dialog;
}

void frmTest::Show(const ReaderDLL& reader, const Form* owner)
{
    if (m_screen != nullptr) { // one dialog at a time: the thread's is open already
        return;
    }
    Screen screen(*this, reader);
    screen.cmdOK.OnPress = [this] { cmdOK_Click(); };
    screen.Dialog.OnTimer = [this] { tmrTest_Timer(); };
    Form_Load();
    screen.Dialog.ShowModal(owner);
}

void frmTest::Form_Load()
{
    m_french = IsFrench(Language);
    m_screen->Dialog.Caption = In(m_french, {L"ACG Encoder Test", L"Test de l'encodeur ACG"});
    m_screen->txtLog.SetText(L"");
    m_screen->cmdOK.SetText(L"OK");
    m_screen->Dialog.StartTimer(StartDelay);
    m_screen->cmdOK.Enable(false);
}

void frmTest::cmdOK_Click()
{
    m_screen->Dialog.Close();
}

void frmTest::LogLine(std::wstring_view text)
{
    Control& log = m_screen->txtLog;
    std::wstring content = log.Text();
    if (!content.empty()) {
        content += NewLine;
    }
    content += text;
    log.SetText(content);
    m_screen->Dialog.ShowNow(log);
}

void frmTest::Log(const Translated& text, std::initializer_list<std::wstring_view> values)
{
    LogLine(Fill(In(m_french, text), values));
}

void frmTest::tmrTest_Timer()
{
    m_screen->Dialog.StopTimer();
    Run run(*m_screen);
    m_screen->txtLog.SetText(L"");
    Log(Texts.m_sStart);
    if (const Failure failure = RunTest(run)) {
        Log(Texts.m_sError, {DecimalText(failure.Number), failure.Description});
    }
}

/// Returns a call failure. A link or a reader that is refused ends in the log.
Failure frmTest::RunTest(Run& run)
{
    const ReaderDLL& reader = m_screen->Reader;
    const auto giveUp = [this, &run](const Translated& reason) -> Failure {
        run.CloseComm();
        Log(reason);
        Log(Texts.m_sFailed);
        return {};
    };
    Log(Texts.m_sOpening, {Device, ModeText()});
    CommSettings settings{.BaudRate = BaudRate, .Protocol = Protocol};
    if (const Failure failure = reader.OpenComm(Device, AutoDetect, settings, run.Comm)) {
        return failure;
    }
    if (run.Comm == CommHandle::None) {
        return giveUp(Texts.m_sOpenFailed);
    }
    if (const Failure failure = reader.SetCommTimeout(run.Comm, Timeout)) {
        return failure;
    }
    uint8_t protocol = 0;
    if (const Failure failure = reader.GetCommProtocol(run.Comm, protocol)) {
        return failure;
    }
    int32_t baudRate = 0;
    if (const Failure failure = reader.GetCommBaudRate(run.Comm, baudRate)) {
        return failure;
    }
    int32_t timeout = 0;
    if (const Failure failure = reader.GetCommTimeout(run.Comm, timeout)) {
        return failure;
    }
    Log(Texts.m_sPortOpen, {DecimalText(baudRate), ProtocolName(protocol), DecimalText(timeout)});

    Log(Texts.m_sDetecting);
    std::string readers;
    if (const Failure failure = reader.DetectReader(run.Comm, readers)) {
        return failure;
    }
    if (readers.empty()) {
        return giveUp(Texts.m_sNoEncoder);
    }
    const auto readerId = static_cast<uint8_t>(readers.front());
    const auto count = static_cast<int32_t>(std::min(readers.size(), MaxReaders));
    Log(Texts.m_sFound, {DecimalText(count), DecimalText(readerId)});

    Log(Texts.m_sOpeningEncoder);
    if (const Failure failure = reader.OpenReader(run.Comm, readerId, run.Reader)) {
        return failure;
    }
    if (run.Reader == ReaderHandle::None) {
        return giveUp(Texts.m_sNoAccess);
    }
    std::wstring deviceId;
    // Without one the line ends after its label.
    static_cast<void>(reader.GetDeviceID(run.Reader, deviceId));
    Log(Texts.m_sDeviceID, {deviceId});
    std::wstring type;
    if (const Failure failure = reader.GetReaderType(run.Reader, type)) {
        return failure;
    }
    Log(Texts.m_sEncoderType, {type});

    Log(Texts.m_sClosingEncoder);
    run.CloseReader();
    Log(Texts.m_sClosingPort);
    run.CloseComm();
    Log(Texts.m_sSuccess);
    return {};
}

std::wstring frmTest::ModeText() const
{
    switch (AutoDetect) {
    case 0:
        return Fill(In(m_french, Texts.m_sNoAutodetect), {DecimalText(BaudRate), ProtocolName(Protocol)});
    case 1:
        return In(m_french, Texts.m_sNormalDetect);
    default:
        return In(m_french, Texts.m_sFastDetect);
    }
}

const wchar_t* frmTest::ProtocolName(uint8_t number) const
{
    return number == 0 ? In(m_french, Texts.m_sAscii) : In(m_french, Texts.m_sBinary);
}

} // namespace acg
