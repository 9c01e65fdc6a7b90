// Reading and writing one block: what is sent, what comes back, and every cause of failure.
#include "tests/ScriptedReader.h"

#include <algorithm>

namespace acg
{

namespace
{

const std::wstring Key = L"a1b2c3d4e5f6";
const std::string SentKey = "A1B2C3D4E5F6";
const std::wstring Block = L"000102030405060708090A0B0C0D0E0F";
const std::string SentBlock = "000102030405060708090A0B0C0D0E0F";

class DataBlocksTest : public EncoderTest
{
protected:
    DataBlocksTest()
    {
        reader.Reply("read block", {SentBlock});
        reader.Reply("write block", {SentBlock});
    }

    /// Reads or writes, by the name of the operation.
    sceReturnCode Run(const std::wstring& operation, int32_t block, std::wstring& contents,
                      uint8_t keyType = 1)
    {
        return operation == L"ReadDataBloc" ? encoder.ReadDataBloc(block, Key, keyType, contents)
                                            : encoder.WriteDataBloc(block, Key, keyType, contents);
    }
};

TEST_F(DataBlocksTest, EachOperationSelectsLogsInAndSendsItsCommand)
{
    Open();
    std::wstring contents = L"not read";
    EXPECT_EQ(encoder.ReadDataBloc(9, Key, KeyTypeB, contents), sceSuccess);
    EXPECT_EQ(contents, Block);
    EXPECT_EQ(Last(), Clean(L"ReadDataBloc"));
    EXPECT_EQ(reader.Commands(), std::string(SelectCommands) + ", login 02BB************, read block 09");
    EXPECT_TRUE(reader.WasSent("login", "02BB" + SentKey));

    reader.Forget();
    contents = L" 000102030405060708090a0b0c0d0e0f ";
    EXPECT_EQ(encoder.WriteDataBloc(200, Key, /*KeyType=*/0, contents), sceSuccess);
    EXPECT_EQ(contents, Block);
    EXPECT_EQ(Last(), Clean(L"WriteDataBloc"));
    EXPECT_EQ(reader.Commands(),
              std::string(SelectCommands) + ", login 30AA************, write block C8" + SentBlock);
}

TEST_F(DataBlocksTest, OnlyTwoIsKeyBAndTheKeyIsNotJudged)
{
    Open();
    for (const uint8_t keyType : std::initializer_list<uint8_t>{0, 1, 3, 255}) {
        std::wstring contents;
        EXPECT_EQ(encoder.ReadDataBloc(0, L" zz", keyType, contents), sceSuccess);
        EXPECT_TRUE(reader.WasSent("login", "00AA ZZ"));
        reader.Forget();
    }
    std::wstring contents;
    EXPECT_EQ(encoder.ReadDataBloc(0, L"", KeyTypeB, contents), sceSuccess);
    EXPECT_TRUE(reader.WasSent("login", "00BB"));
}

TEST_F(DataBlocksTest, RepliesAreFilledOrCutToABlock)
{
    Open();
    struct Case {
        std::string Reply;
        std::wstring Contents;
    };
    for (const Case& row : {Case{"12ab34CD", L"12ab34CD" + std::wstring(24, L'0')},
                            {"", std::wstring(32, L'0')},
                            {SentBlock + "FFFFFFFF", Block}}) {
        reader.Reply("read block", {row.Reply});
        reader.Reply("write block", {row.Reply});
        for (const wchar_t* operation : {L"ReadDataBloc", L"WriteDataBloc"}) {
            std::wstring contents = Block;
            EXPECT_EQ(Run(operation, 1, contents), sceSuccess);
            EXPECT_EQ(contents, row.Contents);
        }
    }
}

TEST_F(DataBlocksTest, BadBlockTextIsRefusedBeforeTheReaderIsAsked)
{
    for (const wchar_t* bad : {L"000102030405060708090A0B0C0D0E0", L"000102030405060708090A0B0C0D0E0F0",
                               L"G00102030405060708090A0B0C0D0E0F", L""}) {
        std::wstring contents = std::wstring(L" ") + bad;
        EXPECT_EQ(encoder.WriteDataBloc(1, Key, 1, contents), sceError);
        EXPECT_EQ(contents, bad);
        EXPECT_EQ(Last(),
                  (Record{-11, L"A data bloc must contain 32 hex digits", L"WriteDataBloc", L"", L"", 0}));
    }
    EXPECT_TRUE(reader.Calls.empty());
}

/// A cause of failure that reading and writing have in common.
struct FailureCase {
    const char* Name;
    std::function<void(ScriptedReader&)> Prepare;
    Record Expected; ///< but for ComFunction; "block" in RdrCommand stands for the block command
    int Commands;    ///< sent, the failing one included
    bool Selected;   ///< the card was, so that reading has emptied its argument

    friend std::ostream& operator<<(std::ostream& out, const FailureCase& row) { return out << row.Name; }
};

class DataBlockFailures : public DataBlocksTest, public testing::WithParamInterface<FailureCase>
{
};

TEST_P(DataBlockFailures, AreRecordedAndLeaveTheArgumentAsTold)
{
    const FailureCase& row = GetParam();
    for (const std::wstring operation : {L"ReadDataBloc", L"WriteDataBloc"}) {
        if (row.Expected.Number != -1) {
            Open();
        }
        row.Prepare(reader);
        std::wstring contents = L" abab0000000000000000000000000000";
        EXPECT_EQ(Run(operation, 5, contents), sceError);

        Record expected = row.Expected;
        expected.ComFunction = operation;
        if (const size_t at = expected.RdrCommand.find(L"block"); at != std::wstring::npos) {
            expected.RdrCommand.insert(at, operation == L"ReadDataBloc" ? L"read " : L"write ");
        }
        EXPECT_EQ(Last(), expected);
        EXPECT_EQ(std::ranges::count_if(
                      reader.Calls, [](const std::string& call) { return call.starts_with("SendCommand"); }),
                  row.Commands);
        if (operation == L"WriteDataBloc") {
            EXPECT_EQ(contents, L"ABAB0000000000000000000000000000");
        } else {
            EXPECT_EQ(contents, row.Selected ? L"" : L" abab0000000000000000000000000000");
        }
        const Record last = Last();
        for (const std::wstring& field :
             {last.Description, last.ComFunction, last.RdrCommand, last.RdrRetCode}) {
            EXPECT_TRUE(field.find(L"A1B2C3") == field.npos && field.find(L"a1b2c3") == field.npos);
        }
        reader.Missing(ReaderFunction::SendCommandGetData, /*FromCall=*/1, /*Times=*/0);
        reader.Reply("select", {"04A1B2C3"});
    }
}

std::function<void(ScriptedReader&)> Answers(const std::string& command, const std::string& reply)
{
    return [=](ScriptedReader& reader) { reader.Reply(command, {reply}); };
}

/// The call of that command of the operation can't be made.
std::function<void(ScriptedReader&)> CallFails(int command)
{
    return [=](ScriptedReader& reader) {
        reader.Missing(ReaderFunction::SendCommandGetData, /*FromCall=*/command);
    };
}

const std::wstring SelectPath = L"SelectCardInRange:EncoderCommand:SendCommandGetData:select";
const std::wstring LoginPath = L"EncoderCommand:SendCommandGetData:login";
const std::wstring BlockPath = L"EncoderCommand:SendCommandGetData:block";

const FailureCase FailureCases[] = {
    {"Closed",
     [](ScriptedReader&) {},
     {-1, L"Encoder is closed", L"", L"SelectCardInRange:EncoderCommand", L"", 0},
     0,
     false},
    {"NoCard",
     Answers("select", ScriptedReader::Status('N')),
     {-8, L"No card in encoder", L"", L"SelectCardInRange", L"", 0},
     3,
     false},
    {"SelectRefused",
     Answers("select", ScriptedReader::Status('X')),
     {-5, L"Encoder command failed", L"", SelectPath, L"X", 0},
     3,
     false},
    {"SelectCallFails", CallFails(1), CallFailed(L"SendCommandGetData", L"", SelectPath), 0, false},
    {"LoginRefused",
     Answers("login", ScriptedReader::Status('X')),
     {-7, L"Authentication failure", L"", LoginPath, L"X", 0},
     4,
     true},
    {"LowerCaseL",
     Answers("login", ScriptedReader::Status('l')),
     {-7, L"Authentication failure", L"", LoginPath, L"l", 0},
     4,
     true},
    {"LoginCallFails",
     CallFails(4),
     {-7, L"Authentication failure", L"", LoginPath, L"", ScriptedReader::MissingError},
     3,
     true},
    {"LoginAnswersData",
     Answers("login", "LL"),
     {-6, L"Encoder failure", L"", L"ReaderType", L"", 0},
     4,
     true},
    {"LoginAnswersNothing",
     Answers("login", ""),
     {-6, L"Encoder failure", L"", L"ReaderType", L"", 0},
     4,
     true},
    {"BlockRefused",
     [](ScriptedReader& reader) {
         reader.Reply("read block", {ScriptedReader::Status('F')});
         reader.Reply("write block", {ScriptedReader::Status('F')});
     },
     {-5, L"Encoder command failed", L"", BlockPath, L"F", 0},
     5,
     true},
    {"BlockCallFails", CallFails(5), CallFailed(L"SendCommandGetData", L"", BlockPath), 4, true},
};

INSTANTIATE_TEST_SUITE_P(All, DataBlockFailures, testing::ValuesIn(FailureCases),
                         [](const auto& row) { return std::string(row.param.Name); });

TEST_F(DataBlocksTest, ReaderWithASilentLoginIsJudgedByItsBlockCommand)
{
    reader.Type = "MultiISO 1.0";
    Open();
    for (const std::string& reply : {ScriptedReader::Status('X'), std::string("data"), std::string()}) {
        reader.Reply("login", {reply});
        std::wstring contents;
        EXPECT_EQ(encoder.ReadDataBloc(1, Key, 1, contents), sceSuccess);
        EXPECT_EQ(Last(), Clean(L"ReadDataBloc"));
    }
    reader.Reply("read block", {ScriptedReader::Status('O')});
    std::wstring contents;
    EXPECT_EQ(encoder.ReadDataBloc(1, Key, 1, contents), sceError);
    EXPECT_EQ(Last().RdrRetCode, L"O");
}

} // namespace
} // namespace acg
