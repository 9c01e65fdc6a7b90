// The information text, opening, closing and re-opening.
#include "platform/AnsiText.h"
#include "tests/ScriptedReader.h"

#include <algorithm>
#include <set>

namespace acg
{

namespace
{

using CallList = std::vector<std::string>;
using HeldState = std::tuple<ReaderHandle, ReaderHandle, bool>;

class OpeningTest : public EncoderTest
{
protected:
    /// Handles of link and reader, and whether there is a list of value blocks.
    [[nodiscard]] HeldState Held() const
    {
        return {EncoderInside::Comm(encoder), EncoderInside::Reader(encoder),
                EncoderInside::ValueBlocks(encoder).has_value()};
    }

    /// Opening ends after that many calls, and closes the link if it was open.
    void ExpectFailure(size_t calls, const Record& expected, int32_t handleOffset = 0)
    {
        reader.Forget();
        EXPECT_EQ(encoder.OpenEncoder(DrawHandle() + handleOffset), sceError);
        EXPECT_EQ(Last(), expected);
        const CallList all = {"OpenComm com1 1 9600 0", "SetCommTimeout 17 2200", "SetCommProtocol 17 0",
                              "DetectReader 17", "OpenReader 17 65 0"};
        CallList made(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(calls));
        const bool linkWasOpen = calls > 0 && reader.Comm != 0;
        if (linkWasOpen) {
            made.insert(made.end(), {"CloseReader 0", "CloseComm 17"});
        }
        EXPECT_EQ(reader.Calls, made);
        EXPECT_EQ(Held(), HeldState(0, 0, !linkWasOpen));
    }
};

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

TEST_F(OpeningTest, EachExitLeavesItsRecordAndNothingOpen)
{
    const Record linkRefused{-2, L"Cannot open encoder", L"OpenEncoder", L"OpenComm"};
    ExpectFailure(0, linkRefused, /*handleOffset=*/1);
    reader.LibraryMissing = true;
    ExpectFailure(0, {53, L"File not found: ACGReader330", L"OpenEncoder", L"OpenComm", L"",
                      ScriptedReader::MissingError});
    reader.LibraryMissing = false;
    using enum ReaderFunction;
    size_t calls = 0;
    for (const ReaderFunction function :
         {OpenComm, SetCommTimeout, SetCommProtocol, DetectReader, OpenReader}) {
        const std::wstring name = FromAnsi(Name(function));
        reader.Missing(function);
        ExpectFailure(calls++, CallFailed(name, L"OpenEncoder", name));
        reader.Missing(function, /*FromCall=*/1, /*Times=*/0);
    }
    reader.Reader = 0;
    ExpectFailure(5, {-2, L"Cannot open encoder", L"OpenEncoder", L"OpenReader", L"0"});
    for (const std::string& list : {std::string(), std::string("\0A", 2)}) {
        reader.Readers = list;
        ExpectFailure(4, {-4, L"No encoder found", L"OpenEncoder", L"DetectReader", L"0"});
    }
    reader.Comm = 0;
    ExpectFailure(1, linkRefused);
}

TEST_F(OpeningTest, WaitsFiveSecondsForACardAndThenIsOpenWithoutOne)
{
    const auto expectSelections = [this](int expected) {
        reader.Forget();
        EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
        EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
        EXPECT_EQ(std::ranges::count(reader.Calls, "SendCommandGetData 34 select "), expected);
    };
    // The clock, which goes a second forward at each look, is looked at once before.
    reader.Reply("select", {ScriptedReader::Status('N')});
    expectSelections(5);
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"");
    reader.Reply("select", {ScriptedReader::Status('N'), ScriptedReader::Status('C'), "04A1B2C3"});
    expectSelections(3);
    reader.Missing(ReaderFunction::GetReaderType);
    expectSelections(5);
}

TEST_F(OpeningTest, CallFailureOfASecondOpeningLeavesTheOldHandles)
{
    Open();
    reader.Missing(ReaderFunction::OpenComm, /*FromCall=*/1, /*Times=*/1);
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceError);
    EXPECT_EQ(Held(), HeldState(0x11, 0x22, true));

    // Here the release closes the old reader on the new link.
    reader.Comm = 0x12;
    reader.Missing(ReaderFunction::OpenReader);
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceError);
    EXPECT_EQ(CallList(reader.Calls.end() - 2, reader.Calls.end()),
              (CallList{"CloseReader 34", "CloseComm 18"}));
}

TEST_F(OpeningTest, ClosingReleasesAlsoWhereItCannotCall)
{
    const auto expectClosing = [this](sceReturnCode code, const Record& record, const CallList& calls) {
        EXPECT_EQ(encoder.CloseEncoder(), code);
        EXPECT_EQ(Last(), record);
        EXPECT_EQ(reader.Calls, calls);
        EXPECT_EQ(Held(), HeldState(0, 0, false));
    };
    expectClosing(sceSuccess, Clean(L"CloseEncoder"), {});
    Open();
    expectClosing(sceSuccess, Clean(L"CloseEncoder"), {"CloseReader 34", "CloseComm 17"});
    Open();
    reader.Missing(ReaderFunction::CloseReader);
    expectClosing(sceError, CallFailed(L"CloseReader", L"CloseEncoder", L"CloseReader"), {"CloseComm 17"});
    reader.Missing(ReaderFunction::CloseReader, /*FromCall=*/1, /*Times=*/0);
    Open();
    reader.Missing(ReaderFunction::CloseComm);
    expectClosing(sceError, CallFailed(L"CloseComm", L"CloseEncoder", L"CloseComm"),
                  {"CloseReader 34", "CloseReader 0"});
}

} // namespace
} // namespace acg
