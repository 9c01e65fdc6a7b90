// The configuration dialog, played without a window.
#include "tests/dialogs/DialogTest.h"

#include <regex>

namespace acg
{

namespace
{

using ConfigureTest = DialogTest;

TEST_F(ConfigureTest, TextsOfBothDialogsAreFrenchForOneWordInAnyCaseAndElseEnglish)
{
    const std::wstring english =
        L"ACG Encoder Configuration|Communication|&Communication port:|COM1,COM2,COM3,COM4,|"
        L"&Automatic detection:|Disabled,Normal detection,Fast detection,|&Speed (bauds):|"
        L"9600,19200,38400,57600,115200,|&Protocol:|ASCII,Binary,|Ti&meout (ms):|2200|OK|Default values|"
        L"&Test settings...|Cancel|ACG Encoder Test||OK|";
    const std::wstring french =
        L"Configuration de l'encodeur ACG|Communication|&Port de communication :|COM1,COM2,COM3,COM4,|"
        L"&Détection automatique :|Désactivée,Normale,Rapide,|&Vitesse en bauds :|"
        L"9600,19200,38400,57600,115200,|P&rotocole :|ASCII,Binaire,|Ti&meout (ms) :|2200|OK|"
        L"Valeurs d'usine|&Test encodeur...|Annuler|Test de l'encodeur ACG||OK|";
    const std::pair<const wchar_t*, std::wstring> languages[] = {
        {L"francais", french}, {L"FrAnCaIs", french}, {L"français", english}, {L" francais", english}};
    for (const auto& [language, expected] : languages) {
        std::wstring texts;
        const auto play = [&](Form& form) {
            texts += form.Caption + L'|';
            for (const Control& control : form.Controls()) {
                for (const std::wstring& line : control.Lines()) {
                    texts += line + L',';
                }
                texts += (control.Lines().empty() ? control.Text() : L"") + L'|';
            }
            form.OnTimer ? frmTest::OfThread().Show(reader.DLL()) // nothing more is shown
                         : Press(form, "cmdTest");
        };
        Configure(play, play, language);
        EXPECT_EQ(texts, expected);
        EXPECT_TRUE(reader.Calls.empty()); // the time for the test hasn't come
    }
}

/// What the fields show, and whether baud rate and protocol can be chosen.
std::wstring Shown(Form& form)
{
    std::wstring shown;
    for (const char* field : {"cboDevice", "cboAutoDetect", "cboBaudrate", "cboProtocol", "txtTimeout"}) {
        shown += Named(form, field).Text() + L'|';
    }
    for (const char* choice : {"lblBaudrate", "cboBaudrate", "lblProtocol", "cboProtocol"}) {
        shown += Named(form, choice).IsEnabled() ? L'y' : L'n';
    }
    for (const char* list : {"cboBaudrate", "cboProtocol"}) {
        EXPECT_EQ(Named(form, list).Background().From,
                  Named(form, list).IsEnabled() ? Colour::Source::Window : Colour::Source::Menu);
    }
    return shown;
}

TEST_F(ConfigureTest, OnlyOKStoresAndWhatCannotBeReadKeepsItsFormerValue)
{
    // Buttons are pressed, lists picked by number; in the end comes the close box. What is stored: device,
    // detection, baud rate, time-out; what is tested: the protocol, too.
    using Actions = std::vector<std::pair<const char*, std::wstring>>;
    const auto timeout = [](const wchar_t* text, const char* button) {
        return Actions{{"txtTimeout", text}, {"cmdTest", L""}, {button, L""}};
    };
    const auto edits = [](const char* button) {
        return Actions{{"cboDevice", L" port "}, {"cboAutoDetect", L"0"}, {"cboBaudrate", L"3"},
                       {"cboProtocol", L"1"},    {"txtTimeout", L"0500"}, {button, L""}};
    };
    const Actions defaults = {{"cmdDefault", L""}, {"cboBaudrate", L"4"}}; // which is disabled then
    const std::tuple<const wchar_t*, Actions, std::wstring> rows[] = {
        {L"", {}, L"COM1|Normal detection|9600|ASCII|2200|nnnn canceled |com1|1|9600|2200 |0|0|0|0"},
        {L"", edits("cmdCancel"),
         L" port |Disabled|57600|Binary|0500|yyyy canceled |com1|1|9600|2200 |0|0|0|0"},
        {L"", timeout(L"", "cmdOK"),
         L"COM1|Normal detection|9600|ASCII||nnnn stored |COM1|1|9600|2200 COM1|1|9600|0|0"},
        {L"", edits("cmdTest"),
         L" port |Disabled|57600|Binary|0500|yyyy stored |COM1|1|9600|2200  port |0|57600|500|1"},
        {L"", edits("cmdOK"),
         L" port |Disabled|57600|Binary|0500|yyyy stored | port |0|57600|500  port |0|57600|500|1"},
        {L"Device=CoM4;Baud rate=115200;Timeout=0",
         {},
         L"COM4|Disabled|115200|Binary|0|yyyy stored |CoM4|0|115200|0  port |0|57600|500|1"},
        {L"Device=Com7;Autodetect=2;Baud rate=4800", timeout(L"2147483648", "cmdOK"),
         L"Com7|Fast detection|9600|Binary|2147483648|nnnn stored |Com7|2|9600|0 Com7|2|9600|500|1"},
        {L"", defaults,
         L"COM1|Normal detection|9600|ASCII|2200|nnnn stored |Com7|2|9600|0 Com7|2|9600|500|1"},
        {L"Device=;Autodetect=3", timeout(L"-12", "cmdOK"),
         L"||9600|Binary|-12|yyyy stored ||3|9600|-12 |2|9600|-12|1"},
        {L"", timeout(L"12a", "cmdCancel"), L"||9600|Binary|12a|yyyy canceled ||3|9600|-12 |2|9600|-12|1"},
    };
    for (const auto& [parameters, actions, expected] : rows) {
        std::wstring outcome;
        const auto play = [&outcome, &act = actions](Form& form) {
            for (const auto& [name, text] : act) {
                Control& control = Named(form, name);
                control.Press();
                control.Look.Kind == ControlKind::DropDownList ? control.Pick(std::stoi(text))
                                                               : control.Edit(text);
            }
            outcome = Shown(form);
            form.PressCloseBox();
            EXPECT_FALSE(form.IsOpen());
        };
        encoder.Parameters(parameters);
        outcome += Configure(
                       play, [](Form&) {}, L"") == sceSuccess
                       ? L" stored "
                       : L" canceled ";
        EXPECT_EQ(Last(), Clean(L"Configure"));
        const std::wstring settings = encoder.Parameters();
        outcome += std::regex_replace(settings.substr(settings.find(L"Device")),
                                      std::wregex(L"(\r\n)?[A-Z][a-z ]+="), L"|");
        const frmTest& test = frmTest::OfThread();
        outcome += L' ' + test.Device;
        for (const int32_t field :
             {int32_t{test.AutoDetect}, test.BaudRate, test.Timeout, int32_t{test.Protocol}}) {
            outcome += L'|' + std::to_wstring(field);
        }
        EXPECT_EQ(outcome, expected);
    }
    HeadlessPlayer() = nullptr; // it can't be shown then, and the last button decides
    EXPECT_EQ(encoder.Configure(L""), sceCanceled);
    frmConfigure::OfThread().OKPressed = true;
    EXPECT_EQ(encoder.Configure(L""), sceSuccess);
}

TEST_F(ConfigureTest, TimeoutTakesDigitsAndASecondDialogLeavesTheFirstAlone)
{
    const auto play = [this](Form& form) {
        for (wchar_t character = 0; character < 300; ++character) {
            const bool accepted = character == 8 || (character >= L'0' && character <= L'9');
            EXPECT_EQ(Named(form, "txtTimeout").AcceptsTyped(character), accepted) << int{character};
        }
        EXPECT_EQ(encoder.Configure(L"francais"), sceCanceled);
        frmConfigure::OfThread().Show(reader.DLL());
        EXPECT_EQ(frmConfigure::OfThread().Language, L"english");
    };
    Configure(play, play, L"english");
}

} // namespace
} // namespace acg
