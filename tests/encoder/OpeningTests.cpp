// The information text, opening, closing and re-opening.
#include "tests/ScriptedReader.h"

#include <algorithm>
#include <set>

namespace acg
{

namespace
{

using OpeningTest = EncoderTest;
using CallList = std::vector<std::string>;

TEST_F(OpeningTest, InformationHasSixFieldsAndANewNumberEachTime)
{
    std::set<int32_t> numbers;
    for (int i = 0; i < 50; ++i) {
        const int32_t number = DrawHandle();
        EXPECT_GE(number, 0);
        EXPECT_LE(number, 99999);
        numbers.insert(number);
    }
    EXPECT_GT(numbers.size(), 40U);
    EXPECT_EQ(Last(), Clean(L"GetInformation"));

    const std::wstring information = encoder.GetInformation();
    const std::wstring start = L"Tarvello|ACG Multi-ISO|7.1.1947|1|";
    const std::wstring end = L"|Mifare Classic, Mifare Ultralight";
    EXPECT_EQ(information.substr(0, start.size()), start);
    EXPECT_EQ(information.substr(information.size() - end.size()), end);
}

TEST_F(OpeningTest, TwoEncodersDrawDifferentNumbers)
{
    std::set<std::wstring> informations;
    for (int i = 0; i < 5; ++i) {
        informations.insert(Encoder(reader.DLL(), std::chrono::steady_clock::now).GetInformation());
    }
    EXPECT_GT(informations.size(), 1U);
}

TEST_F(OpeningTest, OpensWithTheSettingsInForceAndSelectsACard)
{
    encoder.Parameters(L"Device=com2;Autodetect=2;Baud rate=19200;Timeout=-5");
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    const CallList expected = {"OpenComm com2 2 19200 0",
                               "SetCommTimeout 17 -5",
                               "SetCommProtocol 17 0",
                               "DetectReader 17",
                               "OpenReader 17 65 0",
                               "SendCommandGetData 34 use iso14443a ",
                               "SendCommandGetData 34 antenna on ",
                               "SendCommandGetData 34 select ",
                               "GetReaderType 34"};
    EXPECT_EQ(reader.Calls, expected);
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"multiiso 2.5");
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder), std::vector<int32_t>());
}

TEST_F(OpeningTest, FirstReaderOfTheListIsOpenedByTheByteThatTheLibraryGave)
{
    reader.Readers = "\x80\x41"; // in Windows-1252 the euro sign, U+20AC
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    EXPECT_EQ(reader.Calls.at(4), "OpenReader 17 128 0");
}

/// What makes an opening fail, and what it leaves: record, calls. Handles and list are in the exit's group.
struct ExitCase {
    const char* Name;
    std::function<void(ScriptedReader&)> Prepare;
    Record Expected;
    size_t Calls; ///< before ReleaseDevice
    bool Releases;
    int32_t HandleOffset = 0;

    friend std::ostream& operator<<(std::ostream& out, const ExitCase& row) { return out << row.Name; }
};

class OpeningExits : public EncoderTest, public testing::WithParamInterface<ExitCase>
{
};

TEST_P(OpeningExits, LeaveTheRecordAndNothingOpen)
{
    const ExitCase& row = GetParam();
    row.Prepare(reader);
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle() + row.HandleOffset), sceError);

    Record expected = row.Expected;
    expected.ComFunction = L"OpenEncoder";
    EXPECT_EQ(Last(), expected);
    EXPECT_EQ(EncoderInside::Comm(encoder), 0U);
    EXPECT_EQ(EncoderInside::Reader(encoder), 0U);
    EXPECT_EQ(EncoderInside::ValueBlocks(encoder).has_value(), !row.Releases);

    const CallList inOrder = {"OpenComm com1 1 9600 0", "SetCommTimeout 17 2200", "SetCommProtocol 17 0",
                              "DetectReader 17", "OpenReader 17 65 0"};
    CallList calls(inOrder.begin(), inOrder.begin() + static_cast<std::ptrdiff_t>(row.Calls));
    if (row.Releases) {
        calls.insert(calls.end(), {"CloseReader 0", "CloseComm 17"});
    }
    EXPECT_EQ(reader.Calls, calls);
}

Record Refused(int32_t number, std::wstring description, std::wstring function, std::wstring retCode = L"")
{
    return {number, std::move(description), L"", std::move(function), std::move(retCode), 0};
}

Record MissingCall(std::wstring_view function)
{
    return CallFailed(function, L"", function);
}

std::function<void(ScriptedReader&)> Missing(ReaderFunction function)
{
    return [function](ScriptedReader& reader) { reader.Missing(function); };
}

const ExitCase ExitCases[] = {
    {"WrongHandle", [](ScriptedReader&) {}, Refused(-2, L"Cannot open encoder", L"OpenComm"), 0, false,
     /*HandleOffset=*/1},
    {"NoLibrary",
     [](ScriptedReader& reader) { reader.LibraryMissing = true; },
     {53, L"File not found: ACGReader330", L"", L"OpenComm", L"", ScriptedReader::MissingError},
     0,
     false},
    {"NoOpenComm", Missing(ReaderFunction::OpenComm), MissingCall(L"OpenComm"), 0, false},
    {"LinkRefused", [](ScriptedReader& reader) { reader.Comm = 0; },
     Refused(-2, L"Cannot open encoder", L"OpenComm"), 1, false},
    {"NoSetCommTimeout", Missing(ReaderFunction::SetCommTimeout), MissingCall(L"SetCommTimeout"), 1, true},
    {"NoSetCommProtocol", Missing(ReaderFunction::SetCommProtocol), MissingCall(L"SetCommProtocol"), 2, true},
    {"NoDetectReader", Missing(ReaderFunction::DetectReader), MissingCall(L"DetectReader"), 3, true},
    {"EmptyList", [](ScriptedReader& reader) { reader.Readers = ""; },
     Refused(-4, L"No encoder found", L"DetectReader", L"0"), 4, true},
    {"ListOfNul", [](ScriptedReader& reader) { reader.Readers = std::string("\0A", 2); },
     Refused(-4, L"No encoder found", L"DetectReader", L"0"), 4, true},
    {"NoOpenReader", Missing(ReaderFunction::OpenReader), MissingCall(L"OpenReader"), 4, true},
    {"ReaderRefused", [](ScriptedReader& reader) { reader.Reader = 0; },
     Refused(-2, L"Cannot open encoder", L"OpenReader", L"0"), 5, true},
};

INSTANTIATE_TEST_SUITE_P(All, OpeningExits, testing::ValuesIn(ExitCases),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(OpeningTest, OnlyTheLatestNumberOpens)
{
    int32_t first = DrawHandle();
    const int32_t second = DrawHandle();
    first += first == second ? 1 : 0;
    EXPECT_EQ(encoder.OpenEncoder(first), sceError);
    EXPECT_TRUE(reader.Calls.empty());
    EXPECT_EQ(encoder.OpenEncoder(second), sceSuccess);
}

TEST_F(OpeningTest, WaitsFiveSecondsForACardThatDoesNotCome)
{
    reader.Reply("select", {ScriptedReader::Status('N')});
    const auto start = now;
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"");
    // The clock is read once for the deadline, then after each pass until five seconds are over.
    EXPECT_EQ(now - start, std::chrono::seconds(6));
    EXPECT_EQ(std::ranges::count(reader.Calls, "SendCommandGetData 34 select "), 5);
}

TEST_F(OpeningTest, CardThatComesEndsTheWait)
{
    reader.Reply("select", {ScriptedReader::Status('N'), ScriptedReader::Status('C'), "04A1B2C3"});
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    EXPECT_EQ(std::ranges::count(reader.Calls, "SendCommandGetData 34 select "), 3);
}

TEST_F(OpeningTest, ReaderWithoutATypeIsWaitedForAndThenOpen)
{
    reader.Missing(ReaderFunction::GetReaderType);
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    EXPECT_EQ(std::ranges::count(reader.Calls, "SendCommandGetData 34 select "), 5);
}

TEST_F(OpeningTest, CallFailureOfASecondOpeningLeavesTheOldHandles)
{
    Open();
    reader.Missing(ReaderFunction::OpenComm, /*FromCall=*/1, /*Times=*/1);
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceError);
    EXPECT_EQ(EncoderInside::Comm(encoder), 0x11U);
    EXPECT_EQ(EncoderInside::Reader(encoder), 0x22U);

    // Here the release closes the old reader on the new link.
    reader.Forget();
    reader.Comm = 0x12;
    reader.Missing(ReaderFunction::OpenReader);
    EXPECT_EQ(encoder.OpenEncoder(DrawHandle()), sceError);
    EXPECT_EQ(CallList(reader.Calls.end() - 2, reader.Calls.end()),
              (CallList{"CloseReader 34", "CloseComm 18"}));
}

TEST_F(OpeningTest, ClosingTwiceCallsTheLibraryOnce)
{
    EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
    EXPECT_TRUE(reader.Calls.empty());
    Open();
    EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
    EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
    EXPECT_EQ(Last(), Clean(L"CloseEncoder"));
    EXPECT_EQ(reader.Calls, (CallList{"CloseReader 34", "CloseComm 17"}));
    EXPECT_FALSE(EncoderInside::ValueBlocks(encoder));
}

TEST_F(OpeningTest, ClosingThatCannotCallReleasesAllTheSame)
{
    struct Case {
        ReaderFunction Function;
        const wchar_t* Name;
        CallList Calls;
    };
    for (const Case& row : {Case{ReaderFunction::CloseReader, L"CloseReader", {"CloseComm 17"}},
                            {ReaderFunction::CloseComm, L"CloseComm", {"CloseReader 34", "CloseReader 0"}}}) {
        Open();
        reader.Missing(row.Function);
        EXPECT_EQ(encoder.CloseEncoder(), sceError);
        EXPECT_EQ(Last(), CallFailed(row.Name, L"CloseEncoder", row.Name));
        EXPECT_EQ(reader.Calls, row.Calls);
        EXPECT_EQ(EncoderInside::Comm(encoder), 0U);
        EXPECT_EQ(EncoderInside::Reader(encoder), 0U);
        EXPECT_FALSE(EncoderInside::ValueBlocks(encoder));
        reader.Missing(row.Function, /*FromCall=*/1, /*Times=*/0);
    }
}

TEST_F(OpeningTest, ReopeningTakesTheSettingsAndTheNumberAtHand)
{
    Open();
    encoder.Parameters(L"Device=com3");
    static_cast<void>(encoder.GetInformation());
    EXPECT_TRUE(reader.Calls.empty());
    encoder.ReOpenEncoder();
    EXPECT_EQ(Last(), Clean(L"OpenEncoder"));
    EXPECT_EQ(CallList(reader.Calls.begin(), reader.Calls.begin() + 3),
              (CallList{"CloseReader 34", "CloseComm 17", "OpenComm com3 1 9600 0"}));
}

} // namespace
} // namespace acg
