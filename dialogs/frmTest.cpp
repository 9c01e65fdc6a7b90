#include "dialogs/frmTest.h"

#include "dialogs/Texts.h"

#include <algorithm>

namespace acg
{

namespace
{

constexpr int StartDelay = 1000; // milliseconds
constexpr Colour LogBackground = {Colour::Source::Own, 0xF8, 0xF8, 0xF0};
constexpr wchar_t NewLine[] = L"\r\n";

/// Detection gives at most this many readers.
constexpr size_t MostReaders = 255;

} // namespace

struct frmTest::Translation {
    std::wstring Texts::*Field;
    const wchar_t* English;
    const wchar_t* French;
};

const frmTest::Translation frmTest::Translations[] = {
    {&Texts::m_sStart, L"Starting the test.", L"Début du test."},
    {&Texts::m_sOpening, L"Opening communication port %1, %2...",
     L"Ouverture du port de communication %1, %2..."},
    {&Texts::m_sOpenFailed, L"Failed to open the communication port.",
     L"Impossible d'ouvrir le port de communications."},
    {&Texts::m_sNoAutodetect, L"no autodetect. Baud rate: %1, %2 protocol",
     L"pas d'auto-détection. Vitesse : %1 bauds, protocole %2"},
    {&Texts::m_sNormalDetect, L"normal autodetection", L"auto-détection normale"},
    {&Texts::m_sFastDetect, L"fast autodetection", L"auto-détection rapide"},
    {&Texts::m_sAscii, L"ASCII", L"ASCII"},
    {&Texts::m_sBinary, L"binary", L"binaire"},
    {&Texts::m_sPortOpen, L"Communication port open. Baud rate: %1, %2 protocol, timeout: %3 ms",
     L"Ouvert. Vitesse : %1 bauds, protocole %2, timeout : %3 ms"},
    {&Texts::m_sDetecting, L"Detecting encoders...", L"Détection des encodeurs..."},
    {&Texts::m_sNoEncoder, L"No encoder found.", L"Aucun encodeur trouvé."},
    {&Texts::m_sFound, L"%1 encoder(s) found. Encoder ID to test: %2",
     L"%1 encodeur(s) trouvé(s). ID de l'encodeur testé : %2"},
    {&Texts::m_sOpeningEncoder, L"Opening the communication with encoder...",
     L"Ouverture de communication avec l'encodeur..."},
    {&Texts::m_sNoAccess, L"Unable to access to the encoder.", L"Impossible d'accéder à l'encodeur."},
    {&Texts::m_sDeviceID, L"Encoder DeviceID: %1", L"DeviceID de l'encodeur : %1"},
    {&Texts::m_sEncoderType, L"Encoder type: %1", L"Type de l'encodeur : %1"},
    {&Texts::m_sClosingEncoder, L"Closing communication with the encoder...",
     L"Fermeture de la communication avec l'encodeur..."},
    {&Texts::m_sClosingPort, L"Closing the communication port...", L"Fermeture du port de communication..."},
    {&Texts::m_sSuccess, L"\r\n<< Successful test >>\r\n", L"\r\n<< Test réussi >>\r\n"},
    {&Texts::m_sFailed, L"\r\n<< Test failed >>\r\n", L"\r\n<< Echec du test >>\r\n"},
    {&Texts::m_sError, L"Error %1: %2", L"Erreur %1 : %2"},
};

/// The form and its controls, made anew at each opening.
struct frmTest::Window {
    Form Dialog{{.Width = 6735, .Height = 3825, .FontPoints = 8.25}};
    Control& txtLog = Dialog.Add({"txtLog", ControlKind::Log, {45, 0, 6690, 3150}});
    Control& cmdOK = Dialog.Add({"cmdOK", ControlKind::Button, {2482, 3285, 1770, 420}});

    Window()
    {
        constexpr Area Margin = {0, 0, 150, 3150};
        constexpr Area Separator = {-630, 3150, 7245 + 630, 0};
        Dialog.Shapes = {{Margin, LogBackground}, {Separator, {Colour::Source::Highlight3D}}};
        Dialog.DefaultButton = &cmdOK;
        txtLog.SetBackground(LogBackground);
    }
};

frmTest& frmTest::OfThread()
{
    // Never destroyed: the component may have been unloaded when its thread ends.
    thread_local auto* const object = new frmTest;
    return *object;
}

void frmTest::Show(const ReaderDLL& Reader, Form& Owner)
{
    Window window;
    m_window = &window;
    m_reader = &Reader;
    window.cmdOK.OnPress = [this] { cmdOK_Click(); };
    window.Dialog.OnTimer = [this] { tmrTest_Timer(); };
    Form_Load();
    window.Dialog.ShowModal(&Owner);
    m_window = nullptr;
    m_reader = nullptr;
}

void frmTest::Form_Load()
{
    const bool french = IsFrench(Language);
    m_window->Dialog.Caption = french ? L"Test de l'encodeur ACG" : L"ACG Encoder Test";
    m_window->txtLog.SetText(L"");
    m_window->cmdOK.SetText(L"OK");
    for (const Translation& row : Translations) {
        m_texts.*row.Field = french ? row.French : row.English;
    }
    m_window->Dialog.StartTimer(StartDelay);
    m_window->cmdOK.Enable(false);
}

void frmTest::cmdOK_Click()
{
    m_window->Dialog.Close();
}

void frmTest::LogLine(std::wstring_view Text)
{
    Control& log = m_window->txtLog;
    std::wstring content = log.Text();
    if (!content.empty()) {
        content += NewLine;
    }
    content += Text;
    log.SetText(content);
    m_window->Dialog.ShowNow(log);
}

void frmTest::tmrTest_Timer()
{
    Form& dialog = m_window->Dialog;
    dialog.StopTimer();
    dialog.HasWorkingCloseBox = false;
    m_window->txtLog.SetText(L"");
    LogLine(m_texts.m_sStart);

    ReaderHandle comm = 0;
    ReaderHandle reader = 0;
    if (const Failure failure = RunTest(comm, reader)) {
        LogLine(Fill(m_texts.m_sError, {std::to_wstring(failure.Number), failure.Description}));
        if (reader != 0) {
            static_cast<void>(m_reader->CloseReader(reader));
        }
        if (comm != 0) {
            static_cast<void>(m_reader->CloseComm(comm));
        }
    }
    dialog.HasWorkingCloseBox = true;
    m_window->cmdOK.Enable(true);
    dialog.SetFocus(m_window->cmdOK);
}

/// Gives a call failure, with what is open then. A link or a reader that is refused ends in the log.
Failure frmTest::RunTest(ReaderHandle& Comm, ReaderHandle& Reader)
{
    LogLine(Fill(m_texts.m_sOpening, {Device, ModeText()}));
    CommSettings settings{.BaudRate = BaudRate, .Protocol = Protocol};
    if (Failure failure = m_reader->OpenComm(Device, AutoDetect, settings, Comm)) {
        return failure;
    }
    if (Comm == 0) {
        LogLine(m_texts.m_sOpenFailed);
        LogLine(m_texts.m_sFailed);
        return {};
    }
    if (Failure failure = m_reader->SetCommTimeout(Comm, Timeout)) {
        return failure;
    }
    uint8_t protocol = 0;
    if (Failure failure = m_reader->GetCommProtocol(Comm, protocol)) {
        return failure;
    }
    int32_t baudRate = 0;
    if (Failure failure = m_reader->GetCommBaudRate(Comm, baudRate)) {
        return failure;
    }
    int32_t timeout = 0;
    if (Failure failure = m_reader->GetCommTimeout(Comm, timeout)) {
        return failure;
    }
    LogLine(Fill(m_texts.m_sPortOpen,
                 {std::to_wstring(baudRate), ProtocolName(protocol), std::to_wstring(timeout)}));
    return TestReader(Comm, Reader);
}

Failure frmTest::TestReader(ReaderHandle Comm, ReaderHandle& Reader)
{
    const auto giveUp = [this, Comm](const std::wstring& reason) -> Failure {
        static_cast<void>(m_reader->CloseComm(Comm));
        LogLine(reason);
        LogLine(m_texts.m_sFailed);
        return {};
    };
    LogLine(m_texts.m_sDetecting);
    std::string readers;
    if (Failure failure = m_reader->DetectReader(Comm, readers)) {
        return failure;
    }
    const size_t count = std::min({readers.find('\0'), readers.size(), MostReaders});
    if (count == 0) {
        return giveUp(m_texts.m_sNoEncoder);
    }
    const auto readerId = static_cast<uint8_t>(readers.front());
    LogLine(Fill(m_texts.m_sFound, {std::to_wstring(count), std::to_wstring(readerId)}));

    LogLine(m_texts.m_sOpeningEncoder);
    if (Failure failure = m_reader->OpenReader(Comm, readerId, Reader)) {
        return failure;
    }
    if (Reader == 0) {
        return giveUp(m_texts.m_sNoAccess);
    }
    std::wstring deviceId;
    static_cast<void>(m_reader->GetDeviceID(Reader, deviceId)); // without one the line ends behind its label
    LogLine(Fill(m_texts.m_sDeviceID, {deviceId}));
    std::wstring type;
    if (Failure failure = m_reader->GetReaderType(Reader, type)) {
        return failure;
    }
    LogLine(Fill(m_texts.m_sEncoderType, {type}));

    LogLine(m_texts.m_sClosingEncoder);
    static_cast<void>(m_reader->CloseReader(Reader));
    LogLine(m_texts.m_sClosingPort);
    static_cast<void>(m_reader->CloseComm(Comm));
    LogLine(m_texts.m_sSuccess);
    return {};
}

std::wstring frmTest::ModeText() const
{
    switch (AutoDetect) {
    case 0:
        return Fill(m_texts.m_sNoAutodetect, {std::to_wstring(BaudRate), ProtocolName(Protocol)});
    case 1:
        return m_texts.m_sNormalDetect;
    default:
        return m_texts.m_sFastDetect;
    }
}

const std::wstring& frmTest::ProtocolName(uint8_t Number) const
{
    return Number == 0 ? m_texts.m_sAscii : m_texts.m_sBinary;
}

} // namespace acg
