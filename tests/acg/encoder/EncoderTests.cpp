// The life of an encoder, its record, what it says of itself, and its settings.
#include "acg/encoder/NumberReading.h"
#include "acg/platform/AnsiText.h"
#include "tests/ScriptedReader.h"

#include <new>
#include <regex>
#include <set>

using namespace acg;

namespace
{

using CallList = std::vector<std::string>;

TEST_F(EncoderTest, InformationHasSixFieldsAndANewNumberEachTime)
{
    std::set<int32_t> numbers;
    for (int i = 0; i < 50; ++i) {
        numbers.insert(DrawHandle(encoder));
        Encoder other(reader.DLL(), [this] { return now += std::chrono::seconds(1); });
        numbers.insert(DrawHandle(other));
    }
    EXPECT_GT(numbers.size(), 80U);
    EXPECT_TRUE(*numbers.begin() >= 0 && *numbers.rbegin() <= 99999);
    const std::wstring information = encoder.GetInformation();
    EXPECT_TRUE(information.starts_with(L"Tarvello|ACG Multi-ISO|7.1.1947|1|"));
    EXPECT_TRUE(information.ends_with(L"|Mifare Classic, Mifare Ultralight"));
    EXPECT_EQ(Last(), Clean(L"GetInformation"));
}

TEST_F(EncoderTest, OpeningWaitsFiveSecondsForACardAndItsReadersType)
{
    reader.Missing = {ReaderFunction::GetReaderType};
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle(encoder)), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    EXPECT_EQ(reader.Calls.size(), 5 + 5 * 3U); // each look at the clock takes a second
    EXPECT_EQ(encoder.EncoderState(), sceReady);
}

TEST_F(EncoderTest, RefusedOpeningDropsTheValueBlocksAndKeepsTheOldHandles)
{
    Open();
    reader.Replies["write vblock"] = "";
    EXPECT_EQ(encoder.WriteValueBloc(5, L"", KeyTypeA, 0), sceSuccess);
    reader.Forget();
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle(encoder) + 1), sceError);
    EXPECT_EQ(Last(), (CError{-2, L"Cannot open encoder", 0, L"OpenEncoder", L"OpenComm"}));
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), std::vector<int32_t>());
    reader.LibraryMissing = true;
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle(encoder)), sceError);
    EXPECT_EQ(Last(), (CError{53, L"File not found: ACGReader330", ScriptedReader::MissingError,
                              L"OpenEncoder", L"OpenComm"}));
    EXPECT_TRUE(reader.Calls.empty());
    reader.LibraryMissing = false;

    // Here the release closes the old reader on the new link.
    reader.Comm = 0x12;
    reader.Missing = {ReaderFunction::OpenReader};
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle(encoder)), sceError);
    EXPECT_EQ(CallList(reader.Calls.end() - 2, reader.Calls.end()),
              (CallList{"CloseReader 34", "CloseComm 18"}));
}

TEST_F(EncoderTest, DestructionClosesReaderThenLinkThoughBothThrow)
{
    std::vector<ReaderFunction> lookedUp;
    static_cast<void>(Encoder(ReaderDLL([&lookedUp](ReaderFunction function) -> EntryPoint {
                                  lookedUp.push_back(function);
                                  throw std::bad_alloc();
                              }),
                              std::chrono::steady_clock::now));
    EXPECT_EQ(lookedUp, (std::vector{ReaderFunction::CloseReader, ReaderFunction::CloseComm}));
}

TEST_F(EncoderTest, PropertiesRaiseWhatTheyRecord)
{
    const auto raises = [this](const CError& expected, const std::optional<std::wstring>& source, auto read) {
        try {
            static_cast<void>(read());
            ADD_FAILURE() << "nothing was raised";
        } catch (const RaisedFailure& raised) {
            EXPECT_EQ(std::tie(raised.Number, raised.Description, raised.Source),
                      std::tie(expected.Number, expected.Description, source));
        }
        EXPECT_EQ(Last(), expected);
    };
    const auto readType = [this] { return encoder.ReaderType(); };
    raises({-1, L"Encoder is closed", 0, L"ReaderType"}, {}, readType);
    const std::wstring text = L"Feature not supported";
    raises({-16, text, 0, L"ATRString"}, L"", [this] { return encoder.ATRString(); });
    raises({-16, text, 0, L"CardType"}, L"", [this] { return encoder.CardType(); });
    raises({-16, text, 0, L"SerialNumberLength"}, L"", [this] { return encoder.SerialNumberLength(); });
    EXPECT_TRUE(reader.Calls.empty());
    Open();
    reader.Type = std::string("MultiISO 2.5\0more", 17);
    EXPECT_EQ(encoder.ReaderType(), L"MultiISO 2.5");
    reader.Missing = {ReaderFunction::GetReaderType};
    raises({453, L"Can't find entry point GetReaderType in ACGReader330", ScriptedReader::MissingError,
            L"ReaderType", L"GetReaderType"},
           {}, readType);
}

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

using Row = std::pair<std::wstring, int64_t>; // a text, and what it is read as
using NumberReadingTest = testing::TestWithParam<Row>;

TEST_P(NumberReadingTest, ReadsWhatCanStandInANumberAndRoundsToTheNearestOrEven)
{
    EXPECT_EQ(ReadNumber(GetParam().first).Number, GetParam().second);
}

const std::wstring Zeros(400, L'0');
INSTANTIATE_TEST_SUITE_P(
    Number, NumberReadingTest,
    testing::Values(Row(L"", 0), Row(L"abc", 0), Row(L"9600 bauds", 9600), Row(L"\t1\n2 .\t5 e 1 x", 125),
                    Row(L"1\r2", 1), Row(L"1.4.9", 1), Row(L"1&H2", 1), Row(L"- 5", -5), Row(L"+5", 5),
                    Row(L"--5", 0), Row(L"5-3", 5), Row(L"1D+2", 100), Row(L"19d-1", 2), Row(L"1e+", 1),
                    Row(L"1e2e3", 100), Row(L"0e99999999999", 0), Row(L"1e-99999999999", 0),
                    Row(L"& H 1 0", 16), Row(L"&hfg", 15), Row(L"&O18", 1), Row(L"&x1", 0), Row(L"-&H10", 0),
                    Row(L"&HFFFFFFFF", 4294967295), Row(L"2.5", 2), Row(L"3.5", 4), Row(L"-1.5", -2),
                    Row(L"2.51", 3), Row(L"2.49", 2), Row(L"0.35e1", 4), Row(L"0.05e1", 0), Row(L"9.5", 10),
                    Row(L"5e-2", 0), Row(L"12010436.500000001", 12010437), Row(L"2.5" + Zeros + L"1", 3),
                    Row(L"0." + Zeros + L"1e401", 1), Row(L"1" + Zeros + L"e-400", 1)),
    [](const auto& row) {
        const std::string text = ToAnsi(row.param.first.substr(0, 20));
        return std::to_string(row.index) + '_' + std::regex_replace(text, std::regex("[^0-9A-Za-z]"), "_");
    });

TEST(ReadFieldTest, ReturnsNothingForANumberThatDoesNotFit)
{
    for (const wchar_t* tooLarge : {L"2147483648", L"&H80000000", L"1e999", L"-1e99999999999999999999"}) {
        EXPECT_EQ(ReadField<int32_t>(tooLarge), std::nullopt);
    }
    EXPECT_EQ(ReadField<uint8_t>(L"255.5"), std::nullopt);
    EXPECT_EQ(ReadField<int32_t>(DecimalText(INT32_MIN)), INT32_MIN);
}

} // namespace
