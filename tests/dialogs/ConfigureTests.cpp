// The configuration dialog, played without a window.
#include "tests/dialogs/DialogTest.h"

namespace acg
{

namespace
{

using ConfigureTest = DialogTest;

std::wstring Settings(Encoder& encoder)
{
    const std::wstring text = encoder.Parameters();
    return text.substr(text.find(L"Device="));
}

TEST_F(ConfigureTest, LoadsAnySettings)
{
    struct Case {
        const wchar_t* Parameters;
        std::wstring Device;
        size_t DeviceLines;
        int AutoDetect;
        std::wstring BaudRate;
        std::wstring Timeout;
        bool ManualEnabled;
    };
    for (const Case& row :
         {Case{L"", L"COM1", 4, 1, L"9600", L"2200", false},
          {L"Device=CoM4;Autodetect=0;Baud rate=115200;Timeout=0", L"COM4", 4, 0, L"115200", L"0", true},
          {L"Device=Com7;Autodetect=2;Baud rate=4800;Timeout=-5", L"Com7", 5, 2, L"9600", L"-5", false},
          {L"Device=;Autodetect=3;Baud rate=19200", L"", 5, Control::NoLine, L"19200", L"-5", true}}) {
        encoder.Parameters(row.Parameters);
        EXPECT_EQ(
            Configure([&](Form& form) {
                EXPECT_EQ(TextOf(form, "cboDevice"), row.Device);
                EXPECT_EQ(form.Named("cboDevice").Lines().size(), row.DeviceLines);
                EXPECT_EQ(form.Named("cboAutoDetect").SelectedLine(), row.AutoDetect);
                EXPECT_EQ(TextOf(form, "cboBaudrate"), row.BaudRate);
                EXPECT_EQ(TextOf(form, "cboProtocol"), L"ASCII");
                EXPECT_EQ(TextOf(form, "txtTimeout"), row.Timeout);
                for (const char* manual : {"lblBaudrate", "cboBaudrate", "lblProtocol", "cboProtocol"}) {
                    EXPECT_EQ(form.Named(manual).IsEnabled(), row.ManualEnabled) << manual;
                }
                Press(form, "cmdCancel");
            }),
            sceCanceled);
        EXPECT_EQ(Last(), Clean(L"Configure"));
    }
}

TEST_F(ConfigureTest, LanguageIsFrenchForOneWordInAnyCase)
{
    const std::pair<std::wstring_view, bool> cases[] = {
        {L"francais", true},   {L"FrAnCaIs", true}, {L"fran\u00e7ais", false},
        {L" francais", false}, {L"", false},        {L"French", false}};
    for (const auto& [language, inFrench] : cases) {
        const bool french = inFrench;
        const auto expect = [french](Form& form, const wchar_t* ifFrench, const wchar_t* ifEnglish) {
            EXPECT_EQ(form.Caption, french ? ifFrench : ifEnglish);
        };
        Configure(
            [&](Form& form) {
                expect(form, L"Configuration de l'encodeur ACG", L"ACG Encoder Configuration");
                EXPECT_EQ(TextOf(form, "lblAutoDetect"),
                          french ? L"&D\u00e9tection automatique :" : L"&Automatic detection:");
                EXPECT_EQ(form.Named("cboAutoDetect").Lines().front(),
                          french ? L"D\u00e9sactiv\u00e9e" : L"Disabled");
                Press(form, "cmdTest");
            },
            [&](Form& form) { expect(form, L"Test de l'encodeur ACG", L"ACG Encoder Test"); }, language);
    }
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
    });
}

TEST_F(ConfigureTest, OnlyOKStoresAndOnlyInTheEncoder)
{
    Open();
    const auto edit = [](Form& form) {
        form.Named("cboDevice").Edit(L" my port ");
        form.Named("cboAutoDetect").Pick(0);
        form.Named("cboBaudrate").Pick(4);
        form.Named("cboProtocol").Pick(1);
        form.Named("txtTimeout").Edit(L"0500");
    };
    const auto cancel = [&](Form& form) {
        edit(form);
        Press(form, "cmdCancel");
    };
    const auto accept = [&](Form& form) {
        edit(form);
        Press(form, "cmdOK");
        EXPECT_FALSE(form.IsOpen());
    };
    EXPECT_EQ(Configure(cancel), sceCanceled);
    EXPECT_EQ(Settings(encoder), L"Device=com1\r\nAutodetect=1\r\nBaud rate=9600\r\nTimeout=2200");
    EXPECT_EQ(Configure(accept), sceSuccess);
    EXPECT_EQ(Settings(encoder), L"Device= my port \r\nAutodetect=0\r\nBaud rate=115200\r\nTimeout=500");
    EXPECT_TRUE(reader.Calls.empty());

    // The close box after OK: success, and nothing changes. The protocol is the dialog's own and stays.
    const auto closeBox = [&](Form& form) {
        EXPECT_EQ(TextOf(form, "cboProtocol"), L"Binary");
        EXPECT_EQ(TextOf(form, "cboDevice"), L" my port ");
        form.Named("cboAutoDetect").Pick(2);
        form.PressCloseBox();
    };
    EXPECT_EQ(Configure(closeBox), sceSuccess);
    EXPECT_EQ(Settings(encoder), L"Device= my port \r\nAutodetect=0\r\nBaud rate=115200\r\nTimeout=500");
    EXPECT_EQ(Configure(cancel), sceCanceled);
    EXPECT_EQ(Configure(closeBox), sceCanceled);
}

TEST_F(ConfigureTest, DefaultsAreWhatTheFactoryGives)
{
    encoder.Parameters(L"Device=com7;Autodetect=0;Baud rate=19200;Timeout=1");
    EXPECT_EQ(Configure([](Form& form) {
                  Press(form, "cmdDefault");
                  EXPECT_EQ(form.Named("cboDevice").Lines().back(), L"com7");
                  EXPECT_FALSE(form.Named("cboBaudrate").IsEnabled());
                  Press(form, "cmdOK");
              }),
              sceSuccess);
    EXPECT_EQ(Settings(encoder), L"Device=COM1\r\nAutodetect=1\r\nBaud rate=9600\r\nTimeout=2200");
}

TEST_F(ConfigureTest, WhatIsNoNumberKeepsTheFormerValue)
{
    encoder.Parameters(L"Autodetect=200;Timeout=77");
    for (const wchar_t* text : {L"", L"2147483648", L"-", L"12a"}) {
        EXPECT_EQ(Configure([text](Form& form) {
                      form.Named("txtTimeout").Edit(text);
                      Press(form, "cmdOK");
                  }),
                  sceSuccess);
        EXPECT_EQ(Settings(encoder), L"Device=COM1\r\nAutodetect=200\r\nBaud rate=9600\r\nTimeout=77");
    }
}

TEST_F(ConfigureTest, TimeoutTakesDigitsAndBackspace)
{
    Configure([](Form& form) {
        const auto& accepts = form.Named("txtTimeout").AcceptsTyped;
        for (wchar_t character = 0; character < 300; ++character) {
            EXPECT_EQ(accepts(character), character == 8 || (character >= L'0' && character <= L'9'))
                << int{character};
        }
    });
}

TEST_F(ConfigureTest, TestGetsWhatStandsInTheDialogAndKeepsWhatCannotBeRead)
{
    const frmTest& test = frmTest::OfThread();
    const auto given = [&test] {
        return std::tuple(test.Device, int{test.AutoDetect}, test.BaudRate, int{test.Protocol}, test.Timeout);
    };
    encoder.Parameters(L"Autodetect=9;Timeout=77");
    const auto pressTest = [](Form& form) {
        form.Named("txtTimeout").Edit(L"");
        form.Named("cboDevice").Edit(L"typed");
        Press(form, "cmdTest");
        form.Named("cboAutoDetect").Pick(2);
        form.Named("txtTimeout").Edit(L"99");
        form.Named("cboProtocol").Select(1);
    };
    EXPECT_EQ(Configure(pressTest, [&](Form&) { EXPECT_EQ(given(), std::tuple(L"typed", 0, 9600, 0, 0)); }),
              sceCanceled);
    EXPECT_EQ(Configure(
                  [&](Form& form) {
                      form.Named("cboAutoDetect").Pick(2);
                      form.Named("cboProtocol").Select(1);
                      form.Named("txtTimeout").Edit(L"99");
                      Press(form, "cmdTest");
                      EXPECT_EQ(TextOf(form, "txtTimeout"), L"99");
                  },
                  [&](Form&) { EXPECT_EQ(given(), std::tuple(L"COM1", 2, 9600, 1, 99)); }),
              sceCanceled);
    EXPECT_EQ(Configure(pressTest, [&](Form&) { EXPECT_EQ(given(), std::tuple(L"typed", 2, 9600, 0, 99)); }),
              sceCanceled);
    EXPECT_EQ(frmConfigure::OfThread().Device, L"com1");
}

TEST_F(ConfigureTest, WithNobodyToPlayTheLastButtonDecides)
{
    EXPECT_EQ(encoder.Configure(L""), sceCanceled);
    Configure([](Form& form) { Press(form, "cmdOK"); });
    HeadlessPlayer() = nullptr;
    EXPECT_EQ(encoder.Configure(L""), sceSuccess);

    // Neither can a second dialog be shown on top of the first.
    int shown = 0;
    Configure([&](Form&) {
        ++shown;
        EXPECT_EQ(encoder.Configure(L""), sceSuccess);
    });
    EXPECT_EQ(shown, 1);
}

} // namespace
} // namespace acg
