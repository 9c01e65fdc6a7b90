// The configuration dialog, played without a window.
#include "tests/dialogs/DialogTest.h"

namespace acg
{

namespace
{

constexpr const wchar_t* FactorySettings = L"Device=COM1\r\nAutodetect=1\r\nBaud rate=9600\r\nTimeout=2200";

class ConfigureTest : public DialogTest
{
protected:
    /// The lines of devices, what the fields show, and whether the four choices without detection can be
    /// made.
    static std::wstring Shown(Form& form)
    {
        std::wstring shown = std::to_wstring(Named(form, "cboDevice").Lines().size());
        for (const char* field : {"cboDevice", "cboAutoDetect", "cboBaudrate", "cboProtocol", "txtTimeout"}) {
            shown += L'|' + TextOf(form, field);
        }
        for (const char* choice : {"lblBaudrate", "cboBaudrate", "lblProtocol", "cboProtocol"}) {
            shown += Named(form, choice).IsEnabled() ? L" yes" : L" no";
        }
        for (const char* list : {"cboBaudrate", "cboProtocol"}) {
            EXPECT_EQ(Named(form, list).Background().From,
                      Named(form, list).IsEnabled() ? Colour::Source::Window : Colour::Source::Menu);
        }
        return shown;
    }

    std::wstring Settings()
    {
        const std::wstring text = encoder.Parameters();
        return text.substr(text.find(L"Device="));
    }
};

TEST_F(ConfigureTest, LoadsAnySettings)
{
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"", L"4|COM1|Normal detection|9600|ASCII|2200 no no no no"},
        {L"Device=CoM4;Autodetect=0;Baud rate=115200;Timeout=0",
         L"4|COM4|Disabled|115200|ASCII|0 yes yes yes yes"},
        {L"Device=Com7;Autodetect=2;Baud rate=4800;Timeout=-5",
         L"5|Com7|Fast detection|9600|ASCII|-5 no no no no"},
        {L"Device=;Autodetect=3;Baud rate=19200", L"5|||19200|ASCII|-5 yes yes yes yes"}};
    for (const auto& [parameters, expected] : cases) {
        encoder.Parameters(parameters);
        Configure([&wanted = expected](Form& form) { EXPECT_EQ(Shown(form), wanted); });
        EXPECT_EQ(Last(), Clean(L"Configure"));
    }
}

TEST_F(ConfigureTest, LanguageOfBothDialogsIsFrenchForOneWordInAnyCase)
{
    const std::wstring english = L"&Automatic detection:|Disabled|Starting the test.";
    const std::wstring french = L"&Détection automatique :|Désactivée|Début du test.";
    const std::pair<const wchar_t*, std::wstring> languages[] = {
        {L"francais", french}, {L"FrAnCaIs", french}, {L"français", english}, {L" francais", english}};
    for (const auto& [language, expected] : languages) {
        std::wstring texts;
        const auto play = [&texts](Form& form) {
            texts = TextOf(form, "lblAutoDetect") + L'|' + Named(form, "cboAutoDetect").Lines().front();
            Press(form, "cmdTest");
        };
        const auto playTest = [&texts](Form& form) {
            form.OnTimer();
            texts += L'|' + TextOf(form, "txtLog");
        };
        Configure(play, playTest, language);
        EXPECT_TRUE(texts.starts_with(expected)) << testing::PrintToString(texts);
    }
}

TEST_F(ConfigureTest, OnlyOKStoresAndTheCloseBoxGivesWhatTheLastButtonGave)
{
    encoder.Parameters(L"Device=COM1");
    constexpr const char* closeBox = nullptr;
    const std::wstring edited = L"Device= my port \r\nAutodetect=0\r\nBaud rate=57600\r\nTimeout=500";
    const std::tuple<const char*, sceReturnCode, std::wstring> ends[] = {
        {"cmdCancel", sceCanceled, FactorySettings},
        {closeBox, sceCanceled, FactorySettings},
        {"cmdOK", sceSuccess, edited},
        {closeBox, sceSuccess, edited},
        {"cmdCancel", sceCanceled, edited},
        {closeBox, sceCanceled, edited}};
    for (const auto& [end, result, settings] : ends) {
        const auto play = [&, button = end](Form& form) {
            const bool isStored = Settings() == edited; // the protocol is the dialog's own, and stays too
            EXPECT_EQ(TextOf(form, "cboProtocol"), isStored ? L"Binary" : L"ASCII");
            Named(form, "cboDevice").Edit(isStored ? L"other" : L" my port ");
            Named(form, "cboAutoDetect").Pick(0);
            Named(form, "cboBaudrate").Pick(isStored ? 0 : 3);
            Named(form, "cboProtocol").Pick(1);
            Named(form, "txtTimeout").Edit(isStored ? L"1" : L"0500");
            button == closeBox ? form.PressCloseBox() : Press(form, button);
            EXPECT_FALSE(form.IsOpen());
        };
        EXPECT_EQ(Configure(play), result);
        EXPECT_EQ(Settings(), settings);
    }
}

TEST_F(ConfigureTest, DefaultsAreWhatTheFactoryGives)
{
    encoder.Parameters(L"Device=com7;Autodetect=0;Baud rate=19200;Timeout=1");
    Configure([](Form& form) {
        Named(form, "cboProtocol").Pick(1);
        Named(form, "cboAutoDetect").Edit(L""); // no line, no choice
        EXPECT_FALSE(Named(form, "cboBaudrate").IsEnabled());
        Press(form, "cmdDefault");
        Named(form, "cboBaudrate").Pick(3); // it is disabled now
        EXPECT_EQ(Shown(form), L"5|COM1|Normal detection|9600|ASCII|2200 no no no no");
        Press(form, "cmdOK");
    });
    EXPECT_EQ(Settings(), FactorySettings);
}

TEST_F(ConfigureTest, TimeoutTakesDigitsAndWhatIsNoNumberKeepsTheFormerValue)
{
    encoder.Parameters(L"Autodetect=200;Timeout=77");
    const std::pair<const wchar_t*, std::wstring> cases[] = {
        {L"", L"77"}, {L"2147483648", L"77"}, {L"-", L"77"}, {L"12a", L"77"}, {L"-12", L"-12"}};
    for (const auto& [text, stored] : cases) {
        Configure([typed = text](Form& form) {
            for (wchar_t character = 0; character < 300; ++character) {
                const bool accepted = character == 8 || (character >= L'0' && character <= L'9');
                EXPECT_EQ(Named(form, "txtTimeout").AcceptsTyped(character), accepted) << int{character};
            }
            Named(form, "txtTimeout").Edit(typed);
            Press(form, "cmdOK");
        });
        EXPECT_EQ(Settings(), L"Device=COM1\r\nAutodetect=200\r\nBaud rate=9600\r\nTimeout=" + stored);
    }
}

TEST_F(ConfigureTest, TestGetsWhatStandsInTheDialogAndKeepsWhatCannotBeRead)
{
    encoder.Parameters(L"Autodetect=9;Timeout=77");
    const auto given = [this](const std::wstring& device, int line, const std::wstring& timeout) {
        Configure([&](Form& form) {
            Named(form, "cboDevice").Edit(device);
            Named(form, "cboAutoDetect").Pick(line);
            Named(form, "cboProtocol").Select(line - 1);
            Named(form, "txtTimeout").Edit(timeout);
            Press(form, "cmdTest");
        });
        const frmTest& test = frmTest::OfThread();
        return std::tuple(test.Device, int{test.AutoDetect}, test.BaudRate, int{test.Protocol}, test.Timeout);
    };
    EXPECT_EQ(given(L"typed", Control::NoLine, L""), std::tuple(L"typed", 0, 9600, 0, 0));
    EXPECT_EQ(given(L"COM1", 2, L"99"), std::tuple(L"COM1", 2, 9600, 1, 99));
    EXPECT_EQ(given(L"typed", Control::NoLine, L""), std::tuple(L"typed", 2, 9600, 0, 99));
}

TEST_F(ConfigureTest, WithNobodyToPlayTheLastButtonDecides)
{
    EXPECT_EQ(encoder.Configure(L""), sceCanceled);
    Configure([](Form& form) { Press(form, "cmdOK"); });
    HeadlessPlayer() = nullptr;
    EXPECT_EQ(encoder.Configure(L""), sceSuccess);

    // Neither can a second dialog be shown on top of the first, which stays as it is.
    Configure([this](Form&) {
        EXPECT_EQ(encoder.Configure(L"francais"), sceSuccess);
        frmConfigure::OfThread().Show(reader.DLL());
        EXPECT_EQ(frmConfigure::OfThread().Language, L"english");
    });
}

} // namespace
} // namespace acg
