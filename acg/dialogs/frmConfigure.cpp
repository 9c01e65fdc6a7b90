#include "acg/dialogs/frmConfigure.h"

#include "acg/encoder/NumberReading.h"
#include "acg/platform/TextCase.h"

#include <algorithm>

namespace acg
{

namespace
{

// The frame, and the rows in it.
constexpr Area Frame = {97, 90, 6540, 2895};
constexpr int FirstRow = 330;
constexpr int RowDistance = 360;
constexpr int RowHeight = 315;
constexpr int LabelHeight = 225;
constexpr int FieldLeft = 3195;
constexpr int FieldWidth = 3210;
constexpr int LabelLeft = 315;
// The rows under the detection row that belong to it.
constexpr int IndentedLabelLeft = 855;
constexpr int IndentedFieldWidth = 2445;

constexpr int ButtonHeight = 420;
constexpr int FrameButtonTop = 2310;
constexpr double FrameButtonFont = 8.25;
constexpr int BottomButtonTop = 3195;

constexpr int DetectionDisabled = 0;
constexpr wchar_t Backspace = 8;

constexpr Area InFrame(Area area)
{
    return {Frame.Left + area.Left, Frame.Top + area.Top, area.Width, area.Height};
}

constexpr int RowTop(int row)
{
    return FirstRow + row * RowDistance;
}

/// Labels are a little lower than their fields, on the baseline of the text in them.
constexpr Area LabelArea(int row, int left = LabelLeft)
{
    return InFrame({left, RowTop(row) + 60, FieldLeft - left - 75, LabelHeight});
}

constexpr Area FieldArea(int row, int width = FieldWidth)
{
    return InFrame({FieldLeft, RowTop(row), width, RowHeight});
}

/// The position of the selected line; the field is unchanged if none is selected.
void TakePosition(const Control& list, uint8_t& field)
{
    if (list.SelectedLine() != Control::NoLine) {
        field = static_cast<uint8_t>(list.SelectedLine());
    }
}

/// The whole number in the text, blanks and tabs around it ignored; the field is unchanged if there is
/// none, or it is too large.
void TakeNumber(std::wstring_view text, int32_t& field)
{
    constexpr std::wstring_view Blanks = L" \t";
    text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
    text = text.substr(0, text.find_last_not_of(Blanks) + 1);
    const std::wstring_view digits = text.substr(text.starts_with(L'-') ? 1 : 0);
    if (!digits.empty() && digits.find_first_not_of(L"0123456789") == std::wstring_view::npos) {
        field = ReadField<int32_t>(text).value_or(field);
    }
}

/// The position of the line that is that text; NoLine if there is none.
int FindLine(const std::vector<std::wstring>& lines, std::wstring_view text)
{
    const auto found = std::ranges::find(lines, text);
    return found == lines.end() ? Control::NoLine : static_cast<int>(found - lines.begin());
}

} // namespace

/// The form and its controls in tab order, created at each opening.
struct frmConfigure::Screen {
    frmConfigure& Owner;
    const ReaderDLL& Reader;

    Form Dialog{{.Width = 6735, .Height = 3825, .FontPoints = 9}};

    Control& fraComm = Dialog.Add({"fraComm", ControlKind::Frame, Frame});
    Control& lblDevice = Dialog.Add({"lblDevice", ControlKind::Label, LabelArea(0)});
    Control& cboDevice = Dialog.Add({"cboDevice", ControlKind::EditCombo, FieldArea(0)});
    Control& lblAutoDetect = Dialog.Add({"lblAutoDetect", ControlKind::Label, LabelArea(1)});
    Control& cboAutoDetect = Dialog.Add({"cboAutoDetect", ControlKind::DropDownList, FieldArea(1)});
    Control& lblBaudrate = Dialog.Add({"lblBaudrate", ControlKind::Label, LabelArea(2, IndentedLabelLeft)});
    Control& cboBaudrate =
        Dialog.Add({"cboBaudrate", ControlKind::DropDownList, FieldArea(2, IndentedFieldWidth)});
    Control& lblProtocol = Dialog.Add({"lblProtocol", ControlKind::Label, LabelArea(3, IndentedLabelLeft)});
    Control& cboProtocol =
        Dialog.Add({"cboProtocol", ControlKind::DropDownList, FieldArea(3, IndentedFieldWidth)});
    Control& lblTimeout = Dialog.Add({"lblTimeout", ControlKind::Label, LabelArea(4)});
    Control& txtTimeout = Dialog.Add({"txtTimeout", ControlKind::TextField, FieldArea(4)});
    Control& cmdOK = Dialog.Add({"cmdOK", ControlKind::Button, {2992, BottomButtonTop, 1770, ButtonHeight}});
    Control& cmdDefault = Dialog.Add({"cmdDefault", ControlKind::Button,
                                      InFrame({3195, FrameButtonTop, 3210, ButtonHeight}), FrameButtonFont});
    Control& cmdTest = Dialog.Add({"cmdTest", ControlKind::Button,
                                   InFrame({315, FrameButtonTop, 2445, ButtonHeight}), FrameButtonFont});
    Control& cmdCancel =
        Dialog.Add({"cmdCancel", ControlKind::Button, {4867, BottomButtonTop, 1770, ButtonHeight}});

    Screen(frmConfigure& form, const ReaderDLL& reader) : Owner(form), Reader(reader)
    {
        Dialog.DefaultButton = &cmdOK;
        Dialog.CancelButton = &cmdCancel;
        Owner.m_screen = this;
    }
    ~Screen() { Owner.m_screen = nullptr; }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
};

frmConfigure& frmConfigure::OfThread()
{
    // Never destroyed: the component may have been unloaded when the thread ends.
    thread_local auto* const dialog = new frmConfigure;
    return *dialog;
}

void frmConfigure::Show(const ReaderDLL& reader)
{
    Screen screen(*this, reader);
    screen.cboAutoDetect.OnPick = [this] { cboAutoDetect_Click(); };
    screen.cboAutoDetect.OnEdit = [this] { cboAutoDetect_Change(); };
    screen.txtTimeout.AcceptsTyped = txtTimeout_KeyPress;
    screen.cmdDefault.OnPress = [this] { cmdDefault_Click(); };
    screen.cmdTest.OnPress = [this] { cmdTest_Click(); };
    screen.cmdCancel.OnPress = [this] { cmdCancel_Click(); };
    screen.cmdOK.OnPress = [this] { cmdOK_Click(); };
    Form_Load();
    screen.Dialog.ShowModal();
}

void frmConfigure::Form_Load()
{
    Screen& screen = *m_screen;
    const bool french = IsFrench(Language);
    const auto text = [french](const Translated& both) { return In(french, both); };

    screen.Dialog.Caption = text({L"ACG Encoder Configuration", L"Configuration de l'encodeur ACG"});
    const struct {
        Control& Labelled;
        Translated Text;
    } captions[] = {
        {screen.fraComm, {L"Communication", L"Communication"}},
        {screen.lblDevice, {L"&Communication port:", L"&Port de communication :"}},
        {screen.lblAutoDetect, {L"&Automatic detection:", L"&Détection automatique :"}},
        {screen.lblBaudrate, {L"&Speed (bauds):", L"&Vitesse en bauds :"}},
        {screen.lblProtocol, {L"&Protocol:", L"P&rotocole :"}},
        {screen.lblTimeout, {L"Ti&meout (ms):", L"Ti&meout (ms) :"}},
        {screen.cmdDefault, {L"Default values", L"Valeurs d'usine"}},
        {screen.cmdTest, {L"&Test settings...", L"&Test encodeur..."}},
        {screen.cmdCancel, {L"Cancel", L"Annuler"}},
        {screen.cmdOK, {L"OK", L"OK"}},
    };
    for (const auto& [control, caption] : captions) {
        control.SetText(text(caption));
    }
    screen.cboDevice.SetLines({L"COM1", L"COM2", L"COM3", L"COM4"});
    screen.cboAutoDetect.SetLines({text({L"Disabled", L"Désactivée"}),
                                   text({L"Normal detection", L"Normale"}),
                                   text({L"Fast detection", L"Rapide"})});
    screen.cboBaudrate.SetLines({L"9600", L"19200", L"38400", L"57600", L"115200"});
    screen.cboProtocol.SetLines({L"ASCII", text({L"Binary", L"Binaire"})});

    std::vector<std::wstring> devices = screen.cboDevice.Lines();
    std::ranges::transform(devices, devices.begin(), [](const std::wstring& line) { return ToLower(line); });
    int device = FindLine(devices, ToLower(Device));
    if (device == Control::NoLine) {
        device = static_cast<int>(devices.size());
        screen.cboDevice.AddLine(Device);
    }
    screen.cboDevice.Select(device);
    screen.cboAutoDetect.Select(AutoDetect);
    screen.cboBaudrate.Select(std::max(FindLine(screen.cboBaudrate.Lines(), DecimalText(BaudRate)), 0));
    screen.cboProtocol.Select(Protocol);
    screen.txtTimeout.SetText(DecimalText(Timeout));
}

/// Stores what the controls show.
void frmConfigure::TakeSettings(DialogSettings& settings) const
{
    settings.Device = m_screen->cboDevice.Text();
    TakePosition(m_screen->cboAutoDetect, settings.AutoDetect);
    TakeNumber(m_screen->cboBaudrate.Text(), settings.BaudRate);
    TakePosition(m_screen->cboProtocol, settings.Protocol);
    TakeNumber(m_screen->txtTimeout.Text(), settings.Timeout);
}

void frmConfigure::cboAutoDetect_Change()
{
    cboAutoDetect_Click();
}

/// The detection rule: baud rate and protocol are the user's choice only if nothing is detected.
void frmConfigure::cboAutoDetect_Click()
{
    const bool disabled = m_screen->cboAutoDetect.SelectedLine() == DetectionDisabled;
    for (Control* control :
         {&m_screen->lblBaudrate, &m_screen->cboBaudrate, &m_screen->lblProtocol, &m_screen->cboProtocol}) {
        control->Enable(disabled);
    }
    for (Control* list : {&m_screen->cboBaudrate, &m_screen->cboProtocol}) {
        list->SetBackground({disabled ? Colour::Source::Window : Colour::Source::Menu});
    }
}

bool frmConfigure::txtTimeout_KeyPress(wchar_t character) noexcept
{
    return character == Backspace || (character >= L'0' && character <= L'9');
}

void frmConfigure::cmdDefault_Click()
{
    m_screen->cboDevice.Select(0);
    m_screen->cboAutoDetect.Select(1);
    m_screen->cboBaudrate.Select(0);
    m_screen->cboProtocol.Select(0);
    m_screen->txtTimeout.SetText(L"2200");
}

void frmConfigure::cmdTest_Click()
{
    frmTest& test = frmTest::OfThread();
    test.Language = Language;
    TakeSettings(test);
    test.Show(m_screen->Reader, &m_screen->Dialog);
}

void frmConfigure::cmdCancel_Click()
{
    OKPressed = false;
    m_screen->Dialog.Close();
}

void frmConfigure::cmdOK_Click()
{
    TakeSettings(*this);
    OKPressed = true;
    m_screen->Dialog.Close();
}

} // namespace acg
