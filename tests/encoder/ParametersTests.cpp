#include "tests/ScriptedReader.h"

namespace acg
{

namespace
{

std::wstring Lines(const std::wstring& device, const std::wstring& autodetect, const std::wstring& baudRate,
                   const std::wstring& timeout)
{
    return L"Encoding capabilities=Mifare Classic, Mifare Ultralight\r\nDevice=" + device +
           L"\r\nAutodetect=" + autodetect + L"\r\nBaud rate=" + baudRate + L"\r\nTimeout=" + timeout;
}

TEST_F(EncoderTest, EachParameterTextSetsWhatItNamesAndNothingElse)
{
    const std::wstring defaults = Lines(L"com1", L"1", L"9600", L"2200");
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"", defaults},
        {L"Device=com2;Baud rate=19200", Lines(L"com2", L"1", L"19200", L"2200")},
        {L"device = com2", Lines(L" com2", L"1", L"9600", L"2200")},
        {L"Device=COM2,card=4k,uid=1=2 ", Lines(L"COM2,card=4k,uid=1=2 ", L"1", L"9600", L"2200")},
        {L" BAUD RATE =19200", Lines(L"com1", L"1", L"19200", L"2200")},
        {L"DEV\u0130CE=x;baudrate=19200;\tTimeout=1;x;=5", defaults},
        {L"Device=com2;x\r\nTimeout=100", Lines(L"com2;x", L"1", L"9600", L"100")},
        {L"Device=a\nTimeout=100", Lines(L"a\nTimeout=100", L"1", L"9600", L"2200")},
        {L"Timeout;Device", Lines(L"", L"1", L"9600", L"0")},
        {L"Timeout=99999999999;Autodetect=256;Baud rate=1e10", defaults},
        {L"Autodetect=-1;Timeout=-1", Lines(L"com1", L"1", L"9600", L"-1")},
        {L"Autodetect=2.5;Baud rate=1 200;Timeout=abc", Lines(L"com1", L"2", L"1200", L"0")},
        {L"Timeout=100;Timeout=200;Timeout=9e99", Lines(L"com1", L"1", L"9600", L"200")},
        {L"Timeout=100;Timeout=x e;", Lines(L"com1", L"1", L"9600", L"0")},
        {L"Encoding capabilities=anything\r\n", defaults}};
    for (const auto& [given, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(given));
        Encoder fresh(reader.DLL(), std::chrono::steady_clock::now);
        fresh.Parameters(given);
        EXPECT_EQ(fresh.LastError()->ComFunction + fresh.LastError()->RdrCommand, L"Parameters");
        EXPECT_EQ(fresh.Parameters(), expected);
        EXPECT_EQ(fresh.LastError()->ComFunction, L"Parameters");
    }
}

} // namespace
} // namespace acg
