// The configuration dialog, played without a window.
#include "tests/dialogs/DialogTest.h"

namespace acg
{

namespace
{

class ConfigureTest : public DialogTest
{
protected:
    /// The lines of devices, what the fields show, and whether the four choices without detection can be
    /// made.
    static std::wstring Shown(Form& form)
    {
        std::wstring shown = std::to_wstring(form.Named("cboDevice").Lines().size());
        for (const char* field : {"cboDevice", "cboAutoDetect", "cboBaudrate", "cboProtocol", "txtTimeout"}) {
            shown += L'|' + TextOf(form, field);
        }
        for (const char* choice : {"lblBaudrate", "cboBaudrate", "lblProtocol", "cboProtocol"}) {
            shown += form.Named(choice).IsEnabled() ? L" yes" : L" no";
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
        std::wstring shown;
        const auto play = [&shown](Form& form) {
            shown = Shown(form);
            Press(form, "cmdCancel");
        };
        EXPECT_EQ(Configure(play), sceCanceled);
        EXPECT_EQ(shown, expected);
        EXPECT_EQ(Last(), Clean(L"Configure"));
    }
}

TEST_F(ConfigureTest, LanguageIsFrenchForOneWordInAnyCase)
{
    const auto textsIn = [this](const std::wstring& language) {
        std::wstring texts;
        const auto play = [&texts](Form& form) {
            texts =
                form.Caption + TextOf(form, "lblAutoDetect") + form.Named("cboAutoDetect").Lines().front();
            Press(form, "cmdTest");
        };
        const auto playTest = [&texts](Form& form) { texts += form.Caption; };
        Configure(play, playTest, language);
        return texts;
    };
    const std::wstring english = L"ACG Encoder Configuration&Automatic detection:DisabledACG Encoder Test";
    const std::wstring french =
        L"Configuration de l'encodeur ACG&D\u00e9tection automatique :D\u00e9sactiv\u00e9e"
        L"Test de l'encodeur ACG";
    EXPECT_EQ(textsIn(L"francais"), french);
    EXPECT_EQ(textsIn(L"FrAnCaIs"), french);
    EXPECT_EQ(textsIn(L"fran\u00e7ais"), english);
    EXPECT_EQ(textsIn(L" francais"), english);
}

TEST_F(ConfigureTest, DetectionRuleFollowsTheSelection)
{
    Configure([](Form& form) {
        for (const int line : {0, 2, 0, 1}) {
            form.Named("cboAutoDetect").Pick(line);
            for (const char* list : {"cboBaudrate", "cboProtocol"}) {
                EXPECT_EQ(form.Named(list).IsEnabled(), line == 0);
                EXPECT_EQ(form.Named(list).Background().From,
                          line == 0 ? Colour::Source::Window : Colour::Source::Menu);
            }
            form.Named("cboBaudrate").Pick(3); // nothing happens where it is disabled
            EXPECT_EQ(TextOf(form, "cboBaudrate"), L"57600");
        }
        form.Named("cboAutoDetect").Pick(0);
        form.Named("cboAutoDetect").Edit(L"");
        EXPECT_FALSE(form.Named("cboBaudrate").IsEnabled());
    });
}

TEST_F(ConfigureTest, OnlyOKStoresAndOnlyInTheEncoder)
{
    Open();
    const auto editAndPress = [](const char* button) {
        return [button](Form& form) {
            form.Named("cboDevice").Edit(L" my port ");
            form.Named("cboAutoDetect").Pick(0);
            form.Named("cboBaudrate").Pick(4);
            form.Named("cboProtocol").Pick(1);
            form.Named("txtTimeout").Edit(L"0500");
            Press(form, button);
            EXPECT_FALSE(form.IsOpen());
        };
    };
    EXPECT_EQ(Configure(editAndPress("cmdCancel")), sceCanceled);
    EXPECT_EQ(Settings(), L"Device=com1\r\nAutodetect=1\r\nBaud rate=9600\r\nTimeout=2200");
    EXPECT_EQ(Configure(editAndPress("cmdOK")), sceSuccess);
    const std::wstring stored = L"Device= my port \r\nAutodetect=0\r\nBaud rate=115200\r\nTimeout=500";
    EXPECT_EQ(Settings(), stored);
    EXPECT_TRUE(reader.Calls.empty());

    // The close box after OK: success, and nothing changes. The protocol is the dialog's own and stays.
    const auto closeBox = [](Form& form) {
        EXPECT_EQ(TextOf(form, "cboProtocol"), L"Binary");
        form.Named("cboAutoDetect").Pick(2);
        form.PressCloseBox();
    };
    EXPECT_EQ(Configure(closeBox), sceSuccess);
    EXPECT_EQ(Settings(), stored);
    EXPECT_EQ(Configure(editAndPress("cmdCancel")), sceCanceled);
    EXPECT_EQ(Configure(closeBox), sceCanceled);
}

TEST_F(ConfigureTest, DefaultsAreWhatTheFactoryGives)
{
    encoder.Parameters(L"Device=com7;Autodetect=0;Baud rate=19200;Timeout=1");
    Configure([](Form& form) {
        form.Named("cboProtocol").Pick(1);
        Press(form, "cmdDefault");
        EXPECT_EQ(Shown(form), L"5|COM1|Normal detection|9600|ASCII|2200 no no no no");
        Press(form, "cmdOK");
    });
    EXPECT_EQ(Settings(), L"Device=COM1\r\nAutodetect=1\r\nBaud rate=9600\r\nTimeout=2200");
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
                EXPECT_EQ(form.Named("txtTimeout").AcceptsTyped(character), accepted) << int{character};
            }
            form.Named("txtTimeout").Edit(typed);
            Press(form, "cmdOK");
        });
        EXPECT_EQ(Settings(), L"Device=COM1\r\nAutodetect=200\r\nBaud rate=9600\r\nTimeout=" + stored);
    }
}

TEST_F(ConfigureTest, TestGetsWhatStandsInTheDialogAndKeepsWhatCannotBeRead)
{
    encoder.Parameters(L"Autodetect=9;Timeout=77");
    const auto given = [this](const std::wstring& device, int line, const std::wstring& timeout) {
        const auto play = [&](Form& form) {
            form.Named("cboDevice").Edit(device);
            form.Named("cboAutoDetect").Pick(line);
            form.Named("cboProtocol").Select(line - 1);
            form.Named("txtTimeout").Edit(timeout);
            Press(form, "cmdTest");
        };
        EXPECT_EQ(Configure(play), sceCanceled);
        const frmTest& test = frmTest::OfThread();
        return std::tuple(test.Device, int{test.AutoDetect}, test.BaudRate, int{test.Protocol}, test.Timeout);
    };
    EXPECT_EQ(given(L"typed", Control::NoLine, L""), std::tuple(L"typed", 0, 9600, 0, 0));
    EXPECT_EQ(given(L"COM1", 2, L"99"), std::tuple(L"COM1", 2, 9600, 1, 99));
    EXPECT_EQ(given(L"typed", Control::NoLine, L""), std::tuple(L"typed", 2, 9600, 0, 99));
    EXPECT_EQ(frmConfigure::OfThread().Device, L"com1");
}

TEST_F(ConfigureTest, WithNobodyToPlayTheLastButtonDecides)
{
    EXPECT_EQ(encoder.Configure(L""), sceCanceled);
    Configure([](Form& form) { Press(form, "cmdOK"); });
    HeadlessPlayer() = nullptr;
    EXPECT_EQ(encoder.Configure(L""), sceSuccess);

    // Neither can a second dialog be shown on top of the first, which stays as it is.
    int shown = 0;
    Configure([&](Form&) {
        ++shown;
        EXPECT_EQ(encoder.Configure(L"francais"), sceSuccess);
        frmConfigure::OfThread().Show(reader.DLL());
        EXPECT_EQ(frmConfigure::OfThread().Language, L"english");
    });
    EXPECT_EQ(shown, 1);
}

} // namespace
} // namespace acg
