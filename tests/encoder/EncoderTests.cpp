// The record of the last failure, and the properties that raise.
#include "tests/ScriptedReader.h"

#include <new>

namespace acg
{

namespace
{

TEST_F(EncoderTest, DestructionClosesReaderThenLinkAndLeavesTheRecord)
{
    auto mortal = std::make_unique<Encoder>(reader.DLL(), std::chrono::steady_clock::now);
    const std::shared_ptr<CError> record = mortal->LastError();
    EXPECT_EQ(Last(), Clean(L""));
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

TEST(EncoderLifeTest, DestructionBearsThatThereIsNoMemory)
{
    const auto lookUp = [](ReaderFunction) -> EntryPoint { throw std::bad_alloc(); };
    EXPECT_EQ(Encoder(ReaderDLL(lookUp), std::chrono::steady_clock::now).LastError()->Number, 0);
}

TEST_F(EncoderTest, TracingKeepsAPathThatHasNoName)
{
    encoder.LastError()->RdrCommand = L"path";
    EncoderInside::Trace(encoder, L"Name");
    EXPECT_EQ(Last(), (Record{.ComFunction = L"Name", .RdrCommand = L"path"}));
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
    reader.Missing = {ReaderFunction::GetReaderType};
    raises(CallFailed(L"GetReaderType", L"ReaderType", L"GetReaderType"), {}, readType);
}

} // namespace
} // namespace acg
