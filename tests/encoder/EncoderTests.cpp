// The record of the last failure, the states, and the properties that raise.
#include "tests/ScriptedReader.h"

namespace acg
{

namespace
{

TEST_F(EncoderTest, NewEncoderHasACleanRecordAndTouchesNoReader)
{
    EXPECT_EQ(Last(), Clean(L""));
    EXPECT_TRUE(reader.Calls.empty());
}

TEST_F(EncoderTest, RecordIsOneObjectThatOutlivesTheEncoder)
{
    std::shared_ptr<CError> record;
    {
        Encoder shortLived(reader.DLL(), std::chrono::steady_clock::now);
        record = shortLived.LastError();
        EXPECT_EQ(shortLived.OpenEncoder(-1), sceError);
        EXPECT_EQ(record->Number, -2);
        EXPECT_EQ(shortLived.LastError(), record);
    }
    EXPECT_EQ(record->Number, -2);
}

TEST_F(EncoderTest, DestructionClosesReaderThenLinkEvenIfNeverOpened)
{
    {
        const Encoder neverOpened(reader.DLL(), std::chrono::steady_clock::now);
    }
    EXPECT_EQ(reader.Calls, (std::vector<std::string>{"CloseReader 0", "CloseComm 0"}));

    reader.Forget();
    {
        Encoder opened(reader.DLL(), std::chrono::steady_clock::now);
        opened.ReOpenEncoder();
        reader.Forget();
    }
    EXPECT_EQ(reader.Calls, (std::vector<std::string>{"CloseReader 34", "CloseComm 17"}));
}

TEST_F(EncoderTest, TracingPutsTheFormerNameInFrontOfThePath)
{
    EncoderInside::Trace(encoder, L"A");
    EXPECT_EQ(Last(), Clean(L"A"));
    EncoderInside::Trace(encoder, L"B");
    EXPECT_EQ(Last(), (Record{.ComFunction = L"B", .RdrCommand = L"A"}));
    EncoderInside::Trace(encoder, L"C");
    EXPECT_EQ(Last(), (Record{.ComFunction = L"C", .RdrCommand = L"B:A"}));

    encoder.LastError()->ComFunction.clear();
    EncoderInside::Trace(encoder, L"D");
    EXPECT_EQ(Last(), (Record{.ComFunction = L"D", .RdrCommand = L"B:A"}));

    EncoderInside::SetNumberAndDescription(encoder, -6, L"failure");
    EXPECT_EQ(Last(), (Record{-6, L"failure", L"D", L"B:A", L"", 0}));
}

TEST_F(EncoderTest, UnsupportedPropertiesRaiseWhetherOpenOrClosed)
{
    const auto expectRaised = [this](std::wstring_view name, const auto& read) {
        try {
            read();
            ADD_FAILURE() << "nothing was raised";
        } catch (const RaisedFailure& raised) {
            EXPECT_EQ(raised.Number, -16);
            EXPECT_EQ(raised.Description, L"Feature not supported");
            EXPECT_EQ(raised.Source, L"");
        }
        EXPECT_EQ(Last(), (Record{-16, L"Feature not supported", std::wstring(name), L"", L"", 0}));
    };
    for (const bool open : {false, true}) {
        if (open) {
            Open();
        }
        expectRaised(L"ATRString", [this] { static_cast<void>(encoder.ATRString()); });
        expectRaised(L"CardType", [this] { static_cast<void>(encoder.CardType()); });
        expectRaised(L"SerialNumberLength", [this] { static_cast<void>(encoder.SerialNumberLength()); });
        EXPECT_TRUE(reader.Calls.empty());
    }
}

TEST_F(EncoderTest, ReaderTypeIsAskedAnewAndEndsAtItsFirstNul)
{
    Open();
    struct Case {
        std::string Answer;
        std::wstring Type;
    };
    const Case cases[] = {{"MultiISO 2.5", L"MultiISO 2.5"},
                          {std::string("One\0two", 7), L"One"},
                          {std::string("\0x", 2), L""},
                          {"", L""}};
    for (const Case& row : cases) {
        reader.Type = row.Answer;
        EXPECT_EQ(encoder.ReaderType(), row.Type);
        EXPECT_EQ(Last(), Clean(L"ReaderType"));
    }
    EXPECT_EQ(reader.Calls.size(), std::size(cases));
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"multiiso 2.5");
}

TEST_F(EncoderTest, ReaderTypeRaisesWhatItRecords)
{
    const auto expectRaised = [this](const Record& expected) {
        try {
            static_cast<void>(encoder.ReaderType());
            ADD_FAILURE() << "nothing was raised";
        } catch (const RaisedFailure& raised) {
            EXPECT_EQ(raised.Number, expected.Number);
            EXPECT_EQ(raised.Description, expected.Description);
            EXPECT_FALSE(raised.Source);
        }
        EXPECT_EQ(Last(), expected);
    };
    expectRaised({-1, L"Encoder is closed", L"ReaderType", L"", L"", 0});
    Open();
    reader.Missing(ReaderFunction::GetReaderType);
    expectRaised(CallFailed(L"GetReaderType", L"ReaderType", L"GetReaderType"));
}

TEST_F(EncoderTest, StateFollowsTheSelectionAndLeavesACleanRecord)
{
    EXPECT_EQ(encoder.EncoderState(), sceClosed);
    EXPECT_EQ(Last(), Clean(L"EncoderState"));
    EXPECT_TRUE(reader.Calls.empty());
    Open();

    struct Case {
        std::string SelectReply;
        sceEncoderState State;
    };
    for (const Case& row : {Case{"04A1B2C3", sceReady},
                            {"", sceReady},
                            {ScriptedReader::Status('X'), sceReady},
                            {ScriptedReader::Status('N'), sceOpened},
                            {ScriptedReader::Status('F'), sceUnknown},
                            {ScriptedReader::Status('x'), sceUnknown}}) {
        reader.Reply("select", {row.SelectReply});
        EXPECT_EQ(encoder.EncoderState(), row.State) << row.SelectReply;
        EXPECT_EQ(Last(), Clean(L"EncoderState"));
    }
    reader.Missing(ReaderFunction::SendCommandGetData);
    EXPECT_EQ(encoder.EncoderState(), sceUnknown);
    EXPECT_EQ(Last(), Clean(L"EncoderState"));
}

} // namespace
} // namespace acg
