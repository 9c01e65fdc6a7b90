// The life of an encoder, its record, and what it says of itself.
#include "tests/ScriptedReader.h"

#include <new>
#include <set>

namespace acg
{

namespace
{

using CallList = std::vector<std::string>;

TEST_F(EncoderTest, InformationHasSixFieldsAndANewNumberEachTime)
{
    std::set<int32_t> numbers;
    for (int i = 0; i < 50; ++i) {
        numbers.insert(DrawHandle());
        Encoder other(reader.DLL(), [this] { return now += std::chrono::seconds(1); });
        numbers.insert(EncoderInside::HandleNumber(other));
    }
    EXPECT_GT(numbers.size(), 80U);
    EXPECT_TRUE(*numbers.begin() >= 0 && *numbers.rbegin() <= 99999);
    const std::wstring information = encoder.GetInformation();
    EXPECT_TRUE(information.starts_with(L"Tarvello|ACG Multi-ISO|7.1.1947|1|"));
    EXPECT_TRUE(information.ends_with(L"|Mifare Classic, Mifare Ultralight"));
    EXPECT_EQ(Last(), Clean(L"GetInformation"));
}

TEST_F(EncoderTest, ReopeningTakesTheSettingsAndTheNumberAtHandAndTheFirstReader)
{
    Open();
    encoder.Parameters(L"Device=com2;Autodetect=2;Baud rate=19200;Timeout=-5");
    static_cast<void>(encoder.GetInformation());
    reader.Readers = "\x80\x41"; // in Windows-1252 the euro sign, U+20AC
    encoder.ReOpenEncoder();
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    const CallList expected = {"CloseReader 34",       "CloseComm 17",         "OpenComm com2 2 19200 0",
                               "SetCommTimeout 17 -5", "SetCommProtocol 17 0", "DetectReader 17",
                               "OpenReader 17 128 0"};
    EXPECT_EQ(CallList(reader.Calls.begin(), reader.Calls.begin() + 7), expected);
    EXPECT_EQ(reader.Commands(), SelectCommands);
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"multiiso 2.5");
}

TEST_F(EncoderTest, OpeningWaitsFiveSecondsForACardAndItsReadersType)
{
    reader.Missing = {ReaderFunction::GetReaderType};
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    EXPECT_EQ(reader.Calls.size(), 5 + 5 * 3U); // each look at the clock takes a second
    EXPECT_EQ(encoder.EncoderState(), sceReady);
}

TEST_F(EncoderTest, RefusedOpeningDropsTheValueBlocksAndKeepsTheOldHandles)
{
    Open();
    EncoderInside::AddValueBlock(encoder, 5);
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle() + 1), sceError);
    EXPECT_EQ(Last(), (CError{-2, L"Cannot open encoder", 0, L"OpenEncoder", L"OpenComm"}));
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), std::vector<int32_t>());
    reader.LibraryMissing = true;
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceError);
    EXPECT_EQ(Last(), (CError{53, L"File not found: ACGReader330", ScriptedReader::MissingError,
                              L"OpenEncoder", L"OpenComm"}));
    EXPECT_TRUE(reader.Calls.empty());
    reader.LibraryMissing = false;

    // Here the release closes the old reader on the new link.
    reader.Comm = 0x12;
    reader.Missing = {ReaderFunction::OpenReader};
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceError);
    EXPECT_EQ(CallList(reader.Calls.end() - 2, reader.Calls.end()),
              (CallList{"CloseReader 34", "CloseComm 18"}));
}

TEST_F(EncoderTest, DestructionClosesReaderThenLinkAlsoWhereThatThrows)
{
    auto mortal = std::make_unique<Encoder>(reader.DLL(), std::chrono::steady_clock::now);
    const std::shared_ptr<CError> record = mortal->LastError();
    mortal->ReOpenEncoder();
    reader.Forget();
    mortal.reset();
    EXPECT_EQ(reader.Calls, (CallList{"CloseReader 34", "CloseComm 17"}));
    EXPECT_EQ(record->ComFunction, L"OpenEncoder");

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
    raises(CallFailed(L"GetReaderType", L"ReaderType", L"GetReaderType"), {}, readType);
}

} // namespace
} // namespace acg
