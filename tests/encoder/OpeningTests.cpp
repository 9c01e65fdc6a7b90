// The information text, opening, closing and re-opening.
#include "tests/ScriptedReader.h"

#include <set>

namespace acg
{

namespace
{

using CallList = std::vector<std::string>;
using OpeningTest = EncoderTest;

TEST_F(OpeningTest, InformationHasSixFieldsAndANewNumberEachTime)
{
    std::set<int32_t> numbers;
    std::set<std::wstring> firstInformations;
    for (int i = 0; i < 50; ++i) {
        numbers.insert(DrawHandle());
        firstInformations.insert(Encoder(reader.DLL(), std::chrono::steady_clock::now).GetInformation());
    }
    EXPECT_GT(numbers.size(), 40U);
    EXPECT_GE(*numbers.begin(), 0);
    EXPECT_LE(*numbers.rbegin(), 99999);
    EXPECT_GT(firstInformations.size(), 1U);
    EXPECT_EQ(Last(), Clean(L"GetInformation"));
    const std::wstring information = encoder.GetInformation();
    EXPECT_TRUE(information.starts_with(L"Tarvello|ACG Multi-ISO|7.1.1947|1|"));
    EXPECT_TRUE(information.ends_with(L"|Mifare Classic, Mifare Ultralight"));
}

TEST_F(OpeningTest, ReopeningTakesTheSettingsAndTheNumberAtHandAndTheFirstReader)
{
    Open();
    encoder.Parameters(L"Device=com2;Autodetect=2;Baud rate=19200;Timeout=-5");
    static_cast<void>(encoder.GetInformation());
    EXPECT_TRUE(reader.Calls.empty());
    reader.Readers = "\x80\x41"; // in Windows-1252 the euro sign, U+20AC
    encoder.ReOpenEncoder();
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    const CallList expected = {"CloseReader 34",       "CloseComm 17",         "OpenComm com2 2 19200 0",
                               "SetCommTimeout 17 -5", "SetCommProtocol 17 0", "DetectReader 17",
                               "OpenReader 17 128 0"};
    EXPECT_EQ(CallList(reader.Calls.begin(), reader.Calls.begin() + 7), expected);
    EXPECT_EQ(reader.Commands(), SelectCommands);
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"multiiso 2.5");
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), std::vector<int32_t>());
}

TEST_F(OpeningTest, RefusedOpeningDropsTheValueBlocksAndLeavesTheOldHandles)
{
    const auto expectRefused = [this](const Record& expected, int32_t handleOffset) {
        EncoderInside::AddValueBlock(encoder, 5);
        reader.Forget();
        EXPECT_EQ(encoder.OpenEncoder(DrawHandle() + handleOffset), sceError);
        EXPECT_EQ(Last(), expected);
        EXPECT_TRUE(reader.Calls.empty());
        EXPECT_EQ(EncoderInside::ValueBlocks(encoder), std::vector<int32_t>());
        EXPECT_EQ(EncoderInside::Comm(encoder), reader.Comm);
        EXPECT_EQ(EncoderInside::Reader(encoder), reader.Reader);
    };
    Open();
    expectRefused({-2, L"Cannot open encoder", L"OpenEncoder", L"OpenComm"}, /*handleOffset=*/1);
    reader.LibraryMissing = true;
    expectRefused(
        {53, L"File not found: ACGReader330", L"OpenEncoder", L"OpenComm", L"", ScriptedReader::MissingError},
        /*handleOffset=*/0);
    reader.LibraryMissing = false;

    // Here the release closes the old reader on the new link.
    reader.Comm = 0x12;
    reader.Missing = {ReaderFunction::OpenReader};
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceError);
    EXPECT_EQ(CallList(reader.Calls.end() - 2, reader.Calls.end()),
              (CallList{"CloseReader 34", "CloseComm 18"}));
    EXPECT_FALSE(EncoderInside::ValueBlocks(encoder));
}

} // namespace
} // namespace acg
