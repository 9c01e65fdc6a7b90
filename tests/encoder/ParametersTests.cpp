#include "tests/ScriptedReader.h"

namespace acg
{

namespace
{

using ParametersTest = EncoderTest;

std::wstring Lines(const std::wstring& device, const std::wstring& autodetect, const std::wstring& baudRate,
                   const std::wstring& timeout)
{
    return L"Encoding capabilities=Mifare Classic, Mifare Ultralight\r\nDevice=" + device +
           L"\r\nAutodetect=" + autodetect + L"\r\nBaud rate=" + baudRate + L"\r\nTimeout=" + timeout;
}

const std::wstring DefaultText = Lines(L"com1", L"1", L"9600", L"2200");

TEST_F(ParametersTest, NewEncoderHasTheDefaultText)
{
    EXPECT_EQ(encoder.Parameters(), DefaultText);
    EXPECT_EQ(Last(), Clean(L"Parameters"));
}

TEST_F(ParametersTest, EachTextSetsWhatItNamesAndNothingElse)
{
    struct Case {
        std::wstring_view Text;
        std::wstring Expected;
    };
    const Case cases[] = {
        {L"", DefaultText},
        {L"Device=com2;Baud rate=19200", Lines(L"com2", L"1", L"19200", L"2200")},
        {L"device = com2", Lines(L" com2", L"1", L"9600", L"2200")},
        {L"Device=COM2,card=4k,uid=1=2 ", Lines(L"COM2,card=4k,uid=1=2 ", L"1", L"9600", L"2200")},
        {L" BAUD RATE =19200", Lines(L"com1", L"1", L"19200", L"2200")},
        {L"baudrate=19200;\tTimeout=1;x;=5", DefaultText},
        {L"Device=com2;x\r\nTimeout=100", Lines(L"com2;x", L"1", L"9600", L"100")},
        {L"Device=a\nTimeout=100", Lines(L"a\nTimeout=100", L"1", L"9600", L"2200")},
        {L"Timeout;Device", Lines(L"", L"1", L"9600", L"0")},
        {L"Timeout=99999999999;Autodetect=256;Baud rate=1e10", DefaultText},
        {L"Autodetect=-1;Timeout=-1", Lines(L"com1", L"1", L"9600", L"-1")},
        {L"Autodetect=2.5", Lines(L"com1", L"2", L"9600", L"2200")},
        {L"Autodetect=7;Baud rate=1 200;Timeout=abc", Lines(L"com1", L"7", L"1200", L"0")},
        {L"Timeout=100;Timeout=200;Timeout=x e;", Lines(L"com1", L"1", L"9600", L"0")},
        {L"Timeout=100;Timeout=200;Timeout=9e99", Lines(L"com1", L"1", L"9600", L"200")},
        {L"Encoding capabilities=anything\r\n", DefaultText},
    };
    for (const Case& row : cases) {
        Encoder fresh(reader.DLL(), std::chrono::steady_clock::now);
        fresh.Parameters(std::wstring(row.Text));
        EXPECT_EQ(fresh.LastError()->ComFunction, L"Parameters");
        EXPECT_EQ(fresh.LastError()->RdrCommand, L"");
        const std::wstring text = fresh.Parameters();
        EXPECT_EQ(text, row.Expected) << testing::PrintToString(std::wstring(row.Text));
        fresh.Parameters(text);
        EXPECT_EQ(fresh.Parameters(), text);
    }
}

} // namespace
} // namespace acg
