// What a session with a card sends to the reader, and what a command says that it has written.
#include "tests/ScriptedReader.h"
#include "tests/tool/Sectors.h"
#include "tool/CardSession.h"
#include "tool/WriteReport.h"

#include <gtest/gtest.h>

#include <regex>

using namespace acg;
using namespace acg::tool;

namespace
{

/// How it ends: nothing if it does as it should.
std::string EndOf(const std::function<void()>& action)
{
    try {
        action();
        return "";
    } catch (const AnotherCard& other) {
        return "another card: " + other.Now;
    } catch (const OtherFailure& failure) {
        return failure.Text;
    } catch (const CardFailure& failure) {
        return "failure " + std::to_string(failure.Record.Number);
    }
}

const std::string WholeBlockReply(32, '0');

/// Steps: "r04" reads a block with key A, "R04" with key B, "w04" writes it, "t01" tries to log in on a
/// sector; "s" selects, "n" asks for the serial number, "x" puts another card in the field, "f" forgets the
/// first one. What is refused is in the list of commands: "wrong key", "not granted".
struct SessionCase {
    std::string Name;
    std::string Steps;
    std::string Commands;
    std::string End;
    std::string Command; ///< is answered with
    std::string Reply;   ///< this, a letter alone as a status
    std::string ReaderType = "MultiISO 2.5";
};
class CardSessionTest : public EncoderTest, public testing::WithParamInterface<SessionCase>
{
};

const std::string NotWhole = "the reader's reply to reading block 4 isn't a whole block";
const std::string NotHexadecimal = "the reader's reply to reading block 4 isn't hexadecimal";
const std::string NoSerialNumber = "the reader's reply to selecting the card has no serial number";

const SessionCase SessionCases[] = {
    {"OneLoginForASector", "r04 r05 w06 r07", "select, login 01AA, read 04, read 05, write 06, read 07"},
    {"AnotherKey", "r04 R04 R05", "select, login 01AA, read 04, select, login 01BB, read 04, read 05"},
    {"AnotherSector", "r04 r08 r04",
     "select, login 01AA, read 04, select, login 02AA, read 08, select, login 01AA, read 04"},
    {"ALargeSector", "r80 r8F r90", "select, login 20AA, read 80, read 8F, select, login 24AA, read 90"},
    {"ASelectionOfItsOwn", "s s r04", "select, select, login 01AA, read 04"},
    {"TheSerialNumberIsKept", "n n r04", "select, login 01AA, read 04"},
    {"ATriedLoginStays", "t01 r04", "select, login 01AA, read 04"},
    {"WrongKey", "t01 t01", "select, login 01AA, wrong key, select, login 01AA, wrong key", "", "login", "X"},
    {"NoSuchSector", "t27", "select, login 3CAA, wrong key", "", "login", "R"},
    {"NotGranted", "r04 r05",
     "select, login 01AA, read 04, not granted, select, login 01AA, read 05, not granted", "", "read block",
     "F"},
    {"AWriteThatFails", "w04 r05", "select, login 01AA, write 04, failure -5, select, login 01AA, read 05",
     "", "write block", "F"},
    {"NoCardToSelect", "r04", "select", "failure -8", "select", "N"},
    {"NoCardToLogIn", "t01", "select, login 01AA", "failure -7", "login", "N"},
    {"NoCardToRead", "r04", "select, login 01AA, read 04", "failure -5", "read block", "N"},
    {"ASilentReader", "t01 r04 r08", "select, login 01AA, read 07, read 04, select, login 02AA, read 08", "",
     "", "", "multiISO 1.0"},
    {"WrongKeyOnASilentReader", "t01 t01",
     "select, login 01AA, read 07, wrong key, select, login 01AA, read 07, wrong key", "", "read block", "O",
     "MultiISO 1.0"},
    {"NotGrantedOnASilentReader", "t01", "select, login 01AA, read 07", "", "read block", "F",
     "MultiISO 1.0"},
    {"AnEmptyReplyToALogin", "t01", "select, login 01AA", "failure -6", "login", ""},
    {"AShortReply", "r04", "select, login 01AA, read 04", NotWhole, "read block", WholeBlockReply.substr(2)},
    {"ALongReply", "r04", "select, login 01AA, read 04", NotWhole, "read block", WholeBlockReply + "00"},
    {"AReplyThatIsNotHexadecimal", "r04", "select, login 01AA, read 04", NotHexadecimal, "read block",
     WholeBlockReply.substr(1) + "G"},
    {"ABlankInTheReply", "r04", "select, login 01AA, read 04", NotHexadecimal, "read block",
     WholeBlockReply.substr(1) + " "},
    {"AReplyThatANulEnds", "r04", "select, login 01AA, read 04", "", "read block",
     WholeBlockReply + std::string("\0zz", 3)},
    {"NoSerialNumber", "n", "select", NoSerialNumber, "select", ""},
    {"AnotherCard", "r04 x r05 r08", "select, login 01AA, read 04, read 05, select",
     "another card: 0E0E0E0E"},
    {"AnotherCardAfterAllOfTheFirst", "r04 x f r08 s",
     "select, login 01AA, read 04, select, login 02AA, read 08, select"},
};

TEST_P(CardSessionTest, SelectsAndLogsInNoMoreThanItHasTo)
{
    reader.Type = GetParam().ReaderType;
    Open();
    reader.Replies.insert({{"read block", WholeBlockReply}, {"write block", WholeBlockReply}});
    reader.Replies["login"] = GetParam().ReaderType.ends_with("1.0") ? "" : ScriptedReader::Status('L');
    const std::string& reply = GetParam().Reply;
    if (!GetParam().Command.empty()) {
        reader.Replies[GetParam().Command] = reply.size() == 1 ? ScriptedReader::Status(reply[0]) : reply;
    }
    CardSession card(std::shared_ptr<Encoder>(&encoder, [](Encoder*) {}), reader.DLL());
    std::istringstream steps(GetParam().Steps);
    std::string step;
    const std::string end = EndOf([&] {
        while (steps >> step) {
            const int32_t number = step.size() > 1 ? std::stoi(step.substr(1), nullptr, 16) : 0;
            const LoginKey key = LoginOf(step[0] == 'R' ? "BF" : "AF");
            Block block{};
            Refusal refusal = Refusal::None;
            std::optional<CError> failure;
            switch (step[0]) {
            case 'w':
                failure = card.WriteBlock(number, key, block);
                break;
            case 't':
                refusal = card.TryLogIn(number, key);
                break;
            case 's':
                card.Select();
                break;
            case 'n':
                EXPECT_EQ(card.SerialNumber(), "04a1B2C3");
                break;
            case 'x':
                reader.Replies["select"] = "0E0E0E0E";
                break;
            case 'f':
                card.ForgetCard();
                break;
            default:
                refusal = card.TryReadBlock(number, key, block);
            }
            reader.Commands += refusal == Refusal::WrongKey     ? ", wrong key"
                               : refusal == Refusal::NotGranted ? ", not granted"
                               : failure ? ", failure " + std::to_string(failure->Number)
                                         : "";
        }
    });
    EXPECT_EQ(end, GetParam().End);
    const std::regex words(" block| (?=,|$)|" + WholeBlockReply);
    EXPECT_EQ(std::regex_replace(reader.Commands, words, ""), GetParam().Commands);
}
INSTANTIATE_TEST_SUITE_P(, CardSessionTest, testing::ValuesIn(SessionCases),
                         [](const auto& row) { return row.param.Name; });

/// Two parts are to be written, block 4 and block 5. The first one's sending fails as this record, if it has
/// a number; it is read back as Taken says: 'y', 'n', or 'x' if that fails. The card in the field after the
/// sending, and after the reading: 1 the first one, 2 another one, N none. Outcome: of block 4.
struct ReportCase {
    std::string Name;
    CError Sending;
    char Taken;
    std::string Cards;
    std::string Outcome;
    std::string End;
};
class WriteReportTest : public EncoderTest, public testing::WithParamInterface<ReportCase>
{
};

const CError RefusedLogin = {.Number = -7, .RdrCommand = L"SendCommandGetData:login", .RdrRetCode = L"X"};
const CError RefusedWrite = {
    .Number = -5, .RdrCommand = L"SendCommandGetData:write block", .RdrRetCode = L"F"};
const CError LostPurse = {
    .Number = -5, .RdrCommand = L"A:SendCommandGetData:write vblock", .RdrRetCode = L"N"};
const CError NotSent = {.Number = 453, .RdrCommand = L"SendCommandGetData:write block"};
const CError Sent = {};
const std::string OnEither = ", on card 11111111 or on 22222222";
const std::string Another = "another card: 22222222";

const ReportCase ReportCases[] = {
    {"Written", Sent, 'y', "11", "yes"},
    {"SomethingElseIsThere", Sent, 'n', "11", "not known; it doesn't read back as written"},
    {"NotReadBack", Sent, 'x', "11", "not known", "failure -5"},
    {"NoCardToReadBack", Sent, 'x', "1N", "not known", "failure -5"},
    {"NoCardAfterTheSending", Sent, 'y', "N1", "not known", "failure -8"},
    {"NoCardAfterTheReading", Sent, 'y', "1N", "yes, but perhaps on another card than 11111111",
     "failure -8"},
    {"AnotherCardAfterTheSending", Sent, 'y', "22", "not known" + OnEither, Another},
    {"AnotherCardAfterTheReading", Sent, 'y', "12", "yes" + OnEither, Another},
    {"AnotherCardThatDiffers", Sent, 'n', "12", "not known" + OnEither, Another},
    {"AnotherCardThatIsNotRead", Sent, 'x', "12", "not known" + OnEither, Another},
    {"RefusedLogin", RefusedLogin, 'y', "11", "no", "failure -7"},
    {"RefusedLoginOfAnotherCard", RefusedLogin, 'y', "22", "no", Another},
    {"RefusedWrite", RefusedWrite, 'y', "11", "not known", "failure -5"},
    {"RefusedWriteOfAnotherCard", RefusedWrite, 'y', "22", "not known" + OnEither, Another},
    {"LostPurse", LostPurse, 'y', "N1", "not known", "failure -5"},
    {"NotSent", NotSent, 'y', "11", "no", "failure 453"},
};

TEST_P(WriteReportTest, SaysWhatIsWrittenWhateverEndsIt)
{
    const ReportCase& row = GetParam();
    const std::string& outcome = row.Outcome;
    Open();
    const auto lay = [&](char card) {
        reader.Replies["select"] = card == 'N' ? ScriptedReader::Status('N') : std::string(8, card);
    };
    lay('1');
    CardSession card(std::shared_ptr<Encoder>(&encoder, [](Encoder*) {}), reader.DLL());
    Output out;
    WriteReport report(out);
    report.BeginCard(card);
    report.Add("block 4", "look at block 4");
    report.Add("block 5", "look at block 5");
    const std::string end = EndOf([&] {
        lay(row.Cards[0]);
        report.NoteSending(card, row.Sending.Number != 0 ? std::optional(row.Sending) : std::nullopt);
        EXPECT_EQ(row.Taken == 'y', report.ReadBack(card, [&] {
            lay(row.Cards[1]);
            return row.Taken != 'x' ? row.Taken == 'y' : throw CardFailure{RefusedWrite};
        }));
    });
    EXPECT_EQ(end, row.End);
    const bool isWritten = outcome == "yes";
    const std::string others = outcome == "no" ? ", block 5" : "\n  written   no: block 5";
    const std::string next = isWritten || outcome == "no" ? "" : "\n  next      look at block 4";
    const std::string shown = std::regex_replace(out.Outcome, std::regex("\n {12}"), " ");
    EXPECT_EQ(shown, "\n  written   " + outcome + ": block 4" + others + next);
    EXPECT_EQ(out.Json["written"], isWritten ? "partly" : outcome == "no" ? "no" : "unknown");
    EXPECT_EQ(out.Json["card"], "11111111");
}
INSTANTIATE_TEST_SUITE_P(, WriteReportTest, testing::ValuesIn(ReportCases),
                         [](const auto& row) { return row.param.Name; });

} // namespace
