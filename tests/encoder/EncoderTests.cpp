// The record of the last failure, the states, and the properties that raise.
#include "tests/ScriptedReader.h"

namespace acg
{

namespace
{

TEST_F(EncoderTest, DestructionClosesReaderThenLinkAndLeavesTheRecord)
{
    auto mortal = std::make_unique<Encoder>(reader.DLL(), std::chrono::steady_clock::now);
    const std::shared_ptr<CError> record = mortal->LastError();
    EXPECT_TRUE(reader.Calls.empty());
    mortal->ReOpenEncoder();
    EXPECT_EQ(mortal->OpenEncoder(-1), sceError);
    reader.Forget();
    mortal = std::make_unique<Encoder>(reader.DLL(), std::chrono::steady_clock::now);
    EXPECT_EQ(record->Number, -2);
    mortal.reset();
    const std::vector<std::string> closed = {"CloseReader 34", "CloseComm 17", "CloseReader 0",
                                             "CloseComm 0"};
    EXPECT_EQ(reader.Calls, closed);
}

TEST_F(EncoderTest, TracingPutsTheFormerNameInFrontOfThePath)
{
    EXPECT_EQ(Last(), Clean(L""));
    for (const auto& [name, path] : {std::pair(L"A", L""), {L"B", L"A"}, {L"C", L"B:A"}}) {
        EncoderInside::Trace(encoder, name);
        EXPECT_EQ(Last(), (Record{.ComFunction = name, .RdrCommand = path}));
    }
    encoder.LastError()->ComFunction.clear();
    EncoderInside::Trace(encoder, L"D");
    EncoderInside::SetNumberAndDescription(encoder, -6, L"failure");
    EXPECT_EQ(Last(), (Record{-6, L"failure", L"D", L"B:A"}));
}

TEST_F(EncoderTest, ReaderTypeIsAskedAnewAndEndsAtItsFirstNul)
{
    Open();
    for (const std::string& answer : {std::string("One"), std::string("Two\0more", 8)}) {
        reader.Type = answer;
        EXPECT_EQ(encoder.ReaderType(), answer == "One" ? L"One" : L"Two");
        EXPECT_EQ(Last(), Clean(L"ReaderType"));
    }
    EXPECT_EQ(EncoderInside::LowerReaderType(encoder), L"multiiso 2.5");
}

TEST_F(EncoderTest, PropertiesRaiseWhatTheyRecord)
{
    const auto raises = [this](const Record& expected, const std::optional<std::wstring>& source, auto read) {
        try {
            static_cast<void>(read());
            ADD_FAILURE() << "nothing was raised";
        } catch (const RaisedFailure& raised) {
            EXPECT_EQ(std::tie(raised.Number, raised.Description, raised.Source),
                      std::tie(expected.Number, expected.Description, source));
        }
        EXPECT_EQ(Last(), expected);
    };
    const auto expectUnsupported = [&] {
        const std::wstring text = L"Feature not supported";
        raises({-16, text, L"ATRString"}, L"", [this] { return encoder.ATRString(); });
        raises({-16, text, L"CardType"}, L"", [this] { return encoder.CardType(); });
        raises({-16, text, L"SerialNumberLength"}, L"", [this] { return encoder.SerialNumberLength(); });
        EXPECT_TRUE(reader.Calls.empty());
    };
    const auto readType = [this] { return encoder.ReaderType(); };
    raises({-1, L"Encoder is closed", L"ReaderType"}, {}, readType);
    expectUnsupported();
    Open();
    expectUnsupported();
    reader.Missing(ReaderFunction::GetReaderType);
    raises(CallFailed(L"GetReaderType", L"ReaderType", L"GetReaderType"), {}, readType);
}

TEST_F(EncoderTest, StateFollowsTheSelectionAndLeavesACleanRecord)
{
    const auto expectState = [this](sceEncoderState state) {
        EXPECT_EQ(encoder.EncoderState(), state);
        EXPECT_EQ(Last(), Clean(L"EncoderState"));
    };
    expectState(sceClosed);
    EXPECT_TRUE(reader.Calls.empty());
    Open();
    const auto status = ScriptedReader::Status;
    const std::pair<std::string, sceEncoderState> states[] = {
        {"04A1B2C3", sceReady},    {"", sceReady},
        {status('X'), sceReady},   {status('N'), sceOpened},
        {status('F'), sceUnknown}, {status('x'), sceUnknown}};
    for (const auto& [reply, state] : states) {
        reader.Reply("select", {reply});
        expectState(state);
    }
    reader.Missing(ReaderFunction::SendCommandGetData);
    expectState(sceUnknown);
}

} // namespace
} // namespace acg
