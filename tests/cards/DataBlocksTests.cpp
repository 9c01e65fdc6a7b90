// Reading and writing one block, and what makes any operation on blocks fail.
#include "tests/cards/CardTest.h"

namespace acg
{

namespace
{

using DataBlocksTest = CardTest;

TEST_F(DataBlocksTest, EachOperationSelectsLogsInAndSendsItsCommand)
{
    Open();
    std::wstring contents = L"not read";
    EXPECT_EQ(encoder.ReadDataBloc(9, Key, KeyTypeB, contents), sceSuccess);
    EXPECT_EQ(contents, Block);
    EXPECT_EQ(Last(), Clean(L"ReadDataBloc"));
    EXPECT_EQ(reader.Commands(), std::string(SelectCommands) + ", login 02BB************, read block 09");
    EXPECT_TRUE(reader.WasSent("login", "02BBA1B2C3D4E5F6"));

    reader.Forget();
    contents = L" " + Block + L" ";
    EXPECT_EQ(encoder.WriteDataBloc(200, Key, /*KeyType=*/0, contents), sceSuccess);
    EXPECT_EQ(contents, Block); // what the reader answered
    EXPECT_EQ(Last(), Clean(L"WriteDataBloc"));
    EXPECT_EQ(reader.Commands(),
              std::string(SelectCommands) +
                  ", login 30AA************, write block C800112233445566778899AABBCCDDEEFF");

    // Only 2 is key B, and the reader alone judges a key.
    for (const uint8_t keyType : std::initializer_list<uint8_t>{0, 1, 3, 255}) {
        reader.Forget();
        EXPECT_EQ(encoder.ReadDataBloc(0, L" zz", keyType, contents), sceSuccess);
        EXPECT_TRUE(reader.WasSent("login", "00AA ZZ"));
    }
}

TEST_F(DataBlocksTest, RepliesAreFilledOrCutToABlock)
{
    Open();
    const std::wstring zeros(32, L'0');
    const std::pair<std::string, std::wstring> replies[] = {{"12ab34CD", L"12ab34CD" + zeros.substr(8)},
                                                            {"", zeros},
                                                            {"00112233445566778899aabbccddeeffFF", Block}};
    for (const auto& [reply, contents] : replies) {
        reader.Reply("read block", {reply});
        reader.Reply("write block", {reply});
        std::wstring read;
        std::wstring written = Block;
        EXPECT_EQ(encoder.ReadDataBloc(1, Key, 1, read), sceSuccess);
        EXPECT_EQ(encoder.WriteDataBloc(1, Key, 1, written), sceSuccess);
        EXPECT_EQ(read, contents);
        EXPECT_EQ(written, contents);
    }
}

TEST_F(DataBlocksTest, BadBlockTextIsRefusedBeforeTheReaderIsAsked)
{
    const std::wstring trimmed(32, L'0');
    for (const std::wstring& bad :
         {trimmed.substr(1), trimmed + L"0", L"G" + trimmed.substr(1), std::wstring()}) {
        std::wstring contents = L" " + bad;
        EXPECT_EQ(encoder.WriteDataBloc(1, Key, 1, contents), sceError);
        EXPECT_EQ(contents, bad);
        EXPECT_EQ(Last(), (Record{-11, L"A data bloc must contain 32 hex digits", L"WriteDataBloc"}));
    }
    EXPECT_TRUE(reader.Calls.empty());
}

TEST_F(DataBlocksTest, EveryCauseOfFailureIsRecordedInEveryOperation)
{
    using Run = std::function<sceReturnCode(std::wstring&)>;
    const std::wstring before = L"abab0000000000000000000000000000 ";
    const std::wstring trimmed = L"ABAB0000000000000000000000000000";
    const Run read = [this](std::wstring& text) { return encoder.ReadDataBloc(5, Key, 1, text); };
    const Run write = [this](std::wstring& text) { return encoder.WriteDataBloc(5, Key, 1, text); };
    const Run value = [this](const std::wstring&) { return encoder.WriteValueBloc(5, Key, 1, 0); };
    const Run range = [this](std::wstring& text) { return encoder.WriteBytesInBloc(5, Key, 1, 0, 0, text); };
    const Run manufacturer = [this](std::wstring& text) {
        int32_t number = 7;
        uint8_t checkSum = 7;
        const sceReturnCode code = encoder.ReadManufacturerCode(Key, 1, number, checkSum, text);
        EXPECT_EQ(std::tuple(number, checkSum), std::tuple(0, 0));
        return code;
    };
    const Run readTrailer = [this](const std::wstring&) {
        EXPECT_EQ(ReadTrailer(encoder, Key, 1), (Numbers{sceError, 9, 0, 0, 0, 0, 9}));
        return sceError;
    };
    const Run writeTrailer = [this](const std::wstring&) { return WriteTrailer(encoder, Key, 1, {}); };
    // The block command that fails, how often blocks were read before it, and through which operation it
    // goes; what is left of the text after a failure of the selection, and after one behind it.
    const std::tuple<Run, std::string, size_t, std::wstring, std::wstring, std::wstring> operations[] = {
        {read, "read block", 0, L"ReadDataBloc", before, L""},
        {write, "write block", 0, L"WriteDataBloc", trimmed, trimmed},
        {value, "write vblock", 0, L"WriteValueBloc", before, before},
        {manufacturer, "read block", 0, L"ReadManufacturerCode:ReadDataBloc", L"", L""},
        {range, "read block", 0, L"WriteBytesInBloc:ReadDataBloc", L"", L""},
        {range, "write block", 1, L"WriteBytesInBloc:WriteDataBloc", Block, Block},
        {readTrailer, "read block", 0, L"ReadSectorTrailer:ReadDataBloc", before, before},
        {writeTrailer, "read block", 0, L"WriteSectorTrailer:ReadDataBloc", before, before},
        {writeTrailer, "read block", 1, L"WriteSectorTrailer:ReadSectorTrailer:ReadDataBloc", before, before},
        {writeTrailer, "write block", 2, L"WriteSectorTrailer:WriteDataBloc", before, before}};
    const std::wstring exchange = L":EncoderCommand:SendCommandGetData:";
    const std::wstring select = L":SelectCardInRange" + exchange + L"select";
    const std::wstring login = exchange + L"login";
    const auto status = ScriptedReader::Status;
    // Which command fails, the fifth being that of the block; its reply, or none where it can't be called;
    // the record, with the path below the operation.
    const std::tuple<size_t, std::optional<std::string>, Record> causes[] = {
        {0, {}, {-1, L"Encoder is closed", L"", L":SelectCardInRange:EncoderCommand"}},
        {3, status('N'), {-8, L"No card in encoder", L"", L":SelectCardInRange"}},
        {3, status('X'), {-5, L"Encoder command failed", L"", select, L"X"}},
        {3, {}, CallFailed(L"SendCommandGetData", L"", select)},
        {4, status('X'), {-7, L"Authentication failure", L"", login, L"X"}},
        {4, status('l'), {-7, L"Authentication failure", L"", login, L"l"}},
        {4, {}, {-7, L"Authentication failure", L"", login, L"", ScriptedReader::MissingError}},
        {4, "LL", {-6, L"Encoder failure", L"", L":ReaderType"}},
        {4, "", {-6, L"Encoder failure", L"", L":ReaderType"}},
        {5, status('F'), {-5, L"Encoder command failed", L"", exchange, L"F"}},
        {5, {}, CallFailed(L"SendCommandGetData", L"", exchange)}};
    for (const auto& [run, blockCommand, stage, path, unselected, selected] : operations) {
        for (const auto& [command, reply, cause] : causes) {
            if (stage > 0 && (reply || command == 0)) {
                continue; // only calls can be told apart by their number
            }
            SCOPED_TRACE(testing::Message() << path << " stage " << stage << ' ' << cause);
            Restore();
            Open();
            if (reply) {
                reader.Reply(command == 3 ? "select" : command == 4 ? "login" : blockCommand, {*reply});
            } else if (command > 0) {
                reader.Missing(ReaderFunction::SendCommandGetData, static_cast<int>(5 * stage + command));
            } else {
                EXPECT_EQ(encoder.CloseEncoder(), sceSuccess);
            }
            reader.Forget();
            std::wstring text = before;
            EXPECT_EQ(run(text), sceError);
            EXPECT_EQ(text, command < 4 ? unselected : selected);

            Record expected = cause;
            std::wstring whole = path + cause.RdrCommand;
            whole += command == 5 ? std::wstring(blockCommand.begin(), blockCommand.end()) : L"";
            expected.ComFunction = whole.substr(0, whole.find(L':'));
            expected.RdrCommand = whole.substr(whole.find(L':') + 1);
            EXPECT_EQ(Last(), expected); // so no field holds a key
            // Behind each selection the reader's type is asked.
            EXPECT_EQ(reader.Calls.size(),
                      6 * stage + command + (command < 4 ? 0 : 1) - (reply || command == 0 ? 0 : 1));
        }
    }
}

TEST_F(DataBlocksTest, ReaderWithASilentLoginIsJudgedByItsBlockCommand)
{
    reader.Type = "MultiISO 1.0";
    Open();
    std::wstring contents;
    for (const std::string& reply : {ScriptedReader::Status('X'), std::string("data"), std::string()}) {
        reader.Reply("login", {reply});
        EXPECT_EQ(encoder.ReadDataBloc(1, Key, 1, contents), sceSuccess);
        EXPECT_EQ(Last(), Clean(L"ReadDataBloc"));
    }
    reader.Reply("read block", {ScriptedReader::Status('O')});
    EXPECT_EQ(encoder.ReadDataBloc(1, Key, 1, contents), sceError);
    EXPECT_EQ(Last().RdrRetCode, L"O");
}

} // namespace
} // namespace acg
