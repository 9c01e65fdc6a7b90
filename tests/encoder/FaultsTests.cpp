// Every public operation under every fault of every call that it makes.
#include "platform/AnsiText.h"
#include "platform/TextCase.h"
#include "tests/encoder/Operations.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace acg
{

namespace
{

using CallList = std::vector<std::string>;

constexpr const char* SilentType = "MultiISO 1.0"; ///< here a login is judged by what follows it
constexpr int32_t NotFound = 453;

/// What a call answers, and the number that its fault leads to: where it can't be made, where it answers by a
/// letter, where by any other text or a handle of 0. With a number of 0 the operation goes on.
struct Rule {
    std::string_view Call;
    int32_t Missing = NotFound;
    int32_t Letter = 0;
    int32_t Data = 0;
    const char* Answer = "";
};
constexpr Rule Rules[] = {{"OpenComm", NotFound, 0, -2},
                          {"SetCommTimeout"},
                          {"SetCommProtocol"},
                          {"DetectReader", NotFound, 0, -4},
                          {"OpenReader", NotFound, 0, -2},
                          {"CloseReader"},
                          {"CloseComm"},
                          {"GetReaderType"},
                          {"use iso14443a", 0},
                          {"antenna on", 0},
                          {"select", NotFound, -5, 0, "04a1B2C3"},
                          {"login", -7, -7, -6},
                          {"read block", NotFound, -5, 0, ReadReply},
                          {"write block", NotFound, -5, 0, WriteReply},
                          {"write vblock", NotFound, -5}};

/// Of the numbers -1 to -8.
constexpr const wchar_t* Descriptions[] = {
    L"Encoder is closed",      L"Cannot open encoder",    L"",
    L"No encoder found",       L"Encoder command failed", L"Encoder failure",
    L"Authentication failure", L"No card in encoder"};

constexpr std::string_view Exchange = "SendCommandGetData 34 ";

const Rule& RuleOf(const std::string& call)
{
    const std::string name = call.substr(call.starts_with(Exchange) ? Exchange.size() : 0);
    const auto* const rule =
        std::ranges::find_if(Rules, [&](const Rule& one) { return name.starts_with(one.Call); });
    return rule != std::end(Rules) ? *rule
                                   : throw std::logic_error("no rule for " + name.substr(0, name.find(' ')));
}

/// The calls of an operation, one name behind the other.
std::string NamesOf(const CallList& calls)
{
    std::string names;
    for (const std::string& call : calls) {
        std::string name(RuleOf(call).Call);
        std::ranges::replace(name, ' ', '_');
        names += name + ' ';
    }
    return names;
}

/// The same as the operation tells them.
std::string Expanded(const Operation& operation)
{
    std::string names = operation.Calls + ' ';
    constexpr std::string_view card = "card ";
    for (size_t at = 0; (at = names.find(card, at)) != std::string::npos;) {
        names.replace(at, card.size(), "use_iso14443a antenna_on select GetReaderType ");
    }
    return names;
}

std::wstring Joined(const std::wstring& path, const std::wstring& below)
{
    return path.empty() || below.empty() ? path + below : path + L":" + below;
}

/// What is to come of an operation.
struct Told {
    int32_t Result = sceError;
    CallList Calls;
    Course Came;
    Record Left;
    bool IsOpen = true;
    bool HasValueBlocks = true;
    std::string Type; ///< of the reader, as the last selection found it
};

/// Stands for all calls: the encoder is closed, and none is made.
constexpr int OfClosedEncoder = 0;

/// Goes through the calls that the operation makes where there is no fault.
Told Foretell(const Operation& operation, const CallList& clean, const ScriptedReader::Fault& fault,
              const std::string& readerType)
{
    const bool isClosed = fault.FromCall == OfClosedEncoder;
    const bool asksState = operation.Name == L"EncoderState";
    const bool opens = operation.Name.ends_with(L"OpenEncoder");
    const std::wstring name = opens ? L"OpenEncoder" : operation.Name;
    const bool staysOpen = name != L"CloseEncoder" && !isClosed;
    Told told{.IsOpen = staysOpen, .HasValueBlocks = staysOpen, .Type = readerType};
    int calls = 0;
    const auto isHit = [&](const std::string& call) {
        const bool hit = fault.Hits(++calls);
        if (!hit || fault.Reply) {
            told.Calls.push_back(call);
        }
        return hit;
    };
    size_t selection = clean.size();
    size_t selections = 0;
    for (size_t i = 0; i < clean.size(); ++i) {
        const Rule& rule = RuleOf(clean[i]);
        const bool asksType = rule.Call == "GetReaderType";
        const bool closes = rule.Call.starts_with("Close");
        if (rule.Call == "use iso14443a") {
            selection = i;
            ++selections;
        }
        told.Came.Selected = asksType || (told.Came.Selected && selection != i);

        const bool hit = isHit(clean[i]);
        const bool isMissing = hit && !fault.Reply;
        const std::string answer = asksType ? (hit ? "" : readerType)
                                   : hit    ? fault.Reply.value_or("")
                                            : rule.Answer;
        const char letter = answer.size() == 2 && answer[1] == '\0' ? answer[0] : '\0';
        int32_t number = !hit ? 0 : isMissing ? rule.Missing : letter != '\0' ? rule.Letter : rule.Data;
        const bool waits = opens && i >= selection;
        if (rule.Call == "select" && letter == 'N') {
            number = -8;
        } else if (rule.Call == "login" && (told.Type == SilentType || letter == 'L')) {
            number = 0;
        } else if (asksType) {
            told.Type = isMissing || selections == 0 ? told.Type : answer;
            number = selections > 0 && !waits ? 0 : number;
        }
        if (isClosed && number != 0) {
            number = closes ? 0 : -1;
        }

        if (number == 0) {
            if (asksType || rule.Call == "select") {
                told.Came.Answer = FromAnsi(answer);
            } else if (rule.Call.ends_with(" block")) {
                told.Came.Blocks.push_back((FromAnsi(answer) + Zeros).substr(0, Zeros.size()));
            }
            continue;
        }
        if (waits) { // for a card, five selections long
            i = selections < 5 ? selection - 1 : clean.size();
            continue;
        }
        if ((opens && rule.Call != "OpenComm") || closes) { // what it has is released
            isHit(rule.Call == "CloseReader" ? "CloseReader 34" : "CloseReader 0");
            isHit("CloseComm 17");
        }
        if (opens && closes) {
            i = 1; // re-opening doesn't mind, and goes on with OpenComm
            continue;
        }
        told.IsOpen = told.IsOpen && !opens;
        told.HasValueBlocks = told.HasValueBlocks && (!opens || rule.Call == "OpenComm");
        if (asksState) {
            const sceEncoderState failed = letter == 'X' ? sceReady : sceUnknown;
            told.Result = number == -1 ? sceClosed : number == -8 ? sceOpened : failed;
            told.Left = Clean(name);
            return told;
        }
        const bool isCommand = clean[i].starts_with(Exchange);
        const std::wstring function = FromAnsi(isCommand ? "SendCommandGetData" : rule.Call);
        std::wstring path = isCommand && number != -8 ? L"EncoderCommand" : L"";
        if (number != -1 && number != -8) {
            path = Joined(path, isCommand ? Joined(function, FromAnsi(rule.Call)) : function);
            path = number == -6 ? L"ReaderType" : path;
        }
        path = rule.Call == "select" && selections > 0 ? Joined(L"SelectCardInRange", path) : path;
        path = selections > 0 ? Joined(operation.BlockOperations.at(selections - 1), path) : path;
        told.Left = CallFailed(function, name, path);
        if (number != NotFound) {
            const bool tellsZero = rule.Call == "DetectReader" || rule.Call == "OpenReader";
            told.Left.Number = number;
            told.Left.Description = Descriptions[-number - 1];
            const bool tellsLetter = letter != '\0' && number != -8;
            told.Left.RdrRetCode = tellsZero ? L"0" : FromAnsi(tellsLetter ? answer.substr(0, 1) : "");
            told.Left.LastDllError = isMissing && !isClosed ? ScriptedReader::MissingError : 0;
        }
        return told;
    }
    told.Result = asksState ? int{sceReady} : int{sceSuccess};
    told.Came.Succeeded = true;
    told.Left = Clean(name);
    return told;
}

TEST_F(FaultTest, EveryFaultOfEveryCallIsToldAndTheObjectLivesOn)
{
    int count = 0;
    for (const char* type : {"MultiISO 2.5", SilentType}) {
        reader.Type = type + std::string("\0more", 5);
        for (const Operation& operation : Operations) {
            HostArguments first;
            Prepare(operation);
            EXPECT_NE(Run(operation, first), sceError);
            const CallList clean = reader.Calls;
            EXPECT_EQ(NamesOf(clean), Expanded(operation));
            std::vector<ScriptedReader::Fault> faults = FaultsOf(clean);
            count += static_cast<int>(faults.size());
            if (!operation.Name.ends_with(L"OpenEncoder")) {
                faults.push_back({OfClosedEncoder, ScriptedReader::Always});
            }
            for (const ScriptedReader::Fault& fault : faults) {
                SCOPED_TRACE(testing::Message() << ToAnsi(operation.Name) << ", " << type << ", call "
                                                << fault.FromCall << ", " << fault.Times << " times "
                                                << (fault.Reply ? fault.Reply->substr(0, 1) : "missing"));
                Prepare(operation);
                if (fault.FromCall == OfClosedEncoder) {
                    encoder.CloseEncoder();
                    reader.Forget();
                }
                HostArguments host;
                HostArguments expected;
                const Told told = Foretell(operation, clean, fault, type);
                operation.Leave(told.Came, expected);
                reader.Injected = fault;
                EXPECT_EQ(Run(operation, host), told.Result);
                EXPECT_EQ(Last(), told.Left);
                EXPECT_TRUE(host == expected); // they hold keys
                EXPECT_EQ(reader.Calls, told.Calls);
                EXPECT_EQ(std::pair(EncoderInside::Comm(encoder), EncoderInside::Reader(encoder)),
                          told.IsOpen ? std::pair(reader.Comm, reader.Reader) : std::pair(0U, 0U));
                EXPECT_EQ(EncoderInside::ValueBlocks(encoder).has_value(), told.HasValueBlocks);
                EXPECT_EQ(EncoderInside::LowerReaderType(encoder), ToLower(FromAnsi(told.Type)));
                ExpectCleanLife();
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    EXPECT_GT(count, 5000);
    std::printf("%d faults\n", count);
}

} // namespace
} // namespace acg
