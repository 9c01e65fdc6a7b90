// Every public operation under every fault of every call that it makes.
#include "acg/platform/AnsiText.h"
#include "acg/platform/TextCase.h"
#include "tests/acg/encoder/Operations.h"

#include <cstdio>
#include <regex>

using namespace acg;

namespace
{

struct NamedFault {
    std::string Name; ///< "ReadDataBloc, select: N", or for its second "select" "ReadDataBloc, select 2: N"
    ScriptedReader::Fault Injected;
};

/// What a fault leaves in the record; of EncoderState the number is the state.
struct Expected {
    int32_t Number;
    std::wstring Path;
    std::wstring Letter;
};

constexpr int32_t NotFound = 453;
const std::wstring Exchange = L"EncoderCommand:SendCommandGetData:";
const std::wstring Selecting = L"SelectCardInRange";

const std::map<std::string, Expected> ExpectedRecords = {
    {"OpenEncoder, OpenComm: missing", {NotFound, L"OpenComm", L""}},
    {"OpenEncoder, OpenComm: empty", {-2, L"OpenComm", L""}},
    {"OpenEncoder, SetCommTimeout: missing", {NotFound, L"SetCommTimeout", L""}},
    {"OpenEncoder, SetCommProtocol: missing", {NotFound, L"SetCommProtocol", L""}},
    {"OpenEncoder, DetectReader: missing", {NotFound, L"DetectReader", L""}},
    {"OpenEncoder, DetectReader: empty", {-4, L"DetectReader", L"0"}},
    {"OpenEncoder, OpenReader: missing", {NotFound, L"OpenReader", L""}},
    {"OpenEncoder, OpenReader: empty", {-2, L"OpenReader", L"0"}},
    {"OpenEncoder, select: N", {0, L"", L""}},
    {"CloseEncoder, CloseReader: missing", {NotFound, L"CloseReader", L""}},
    {"CloseEncoder, CloseComm: missing", {NotFound, L"CloseComm", L""}},
    {"EncoderState, select: N", {sceOpened, L"", L""}},
    {"EncoderState, select: X", {sceReady, L"", L""}},
    {"EncoderState, select: n", {sceUnknown, L"", L""}},
    {"EncoderState, GetReaderType: missing", {sceReady, L"", L""}},
    {"ReaderType, GetReaderType: missing", {NotFound, L"GetReaderType", L""}},
    {"ReadSerialNumber, select: N", {-8, L"", L""}},
    {"ReadSerialNumber, select: n", {-5, Exchange + L"select", L"n"}},
    {"ReadDataBloc, use iso14443a: missing", {0, L"", L""}},
    {"ReadDataBloc, antenna on: n", {0, L"", L""}},
    {"ReadDataBloc, select: N", {-8, Selecting, L""}},
    {"ReadDataBloc, select: X", {-5, Selecting + L":" + Exchange + L"select", L"X"}},
    {"ReadDataBloc, select: missing", {NotFound, Selecting + L":" + Exchange + L"select", L""}},
    {"ReadDataBloc, login: n", {-7, Exchange + L"login", L"n"}},
    {"ReadDataBloc, login: missing", {-7, Exchange + L"login", L""}},
    {"ReadDataBloc, login: data", {-6, L"ReaderType", L""}},
    {"MultiISO 1.0: ReadDataBloc, login: data", {0, L"", L""}},
    {"ReadDataBloc, read block: N", {-5, Exchange + L"read block", L"N"}},
    {"ReadDataBloc, read block: missing", {NotFound, Exchange + L"read block", L""}},
    {"WriteDataBloc, login: X", {-7, Exchange + L"login", L"X"}},
    {"WriteDataBloc, write block: n", {-5, Exchange + L"write block", L"n"}},
    {"WriteValueBloc, login: data", {-6, L"ReaderType", L""}},
    {"WriteValueBloc, write vblock: L", {-5, Exchange + L"write vblock", L"L"}},
    {"ReadManufacturerCode, select: N", {-8, L"ReadDataBloc:" + Selecting, L""}},
    {"ReadSectorTrailer, login: X", {-7, L"ReadDataBloc:" + Exchange + L"login", L"X"}},
    {"WriteSectorTrailer, login 2: data", {-6, L"ReadSectorTrailer:ReadDataBloc:ReaderType", L""}},
    {"WriteSectorTrailer, write block: n", {-5, L"WriteDataBloc:" + Exchange + L"write block", L"n"}},
    {"WriteBytesInBloc, read block: X", {-5, L"ReadDataBloc:" + Exchange + L"read block", L"X"}},
    {"WriteBytesInBloc, select 2: N", {-8, L"WriteDataBloc:" + Selecting, L""}},
};

const std::map<int32_t, std::wstring> Descriptions = {{0, L""},
                                                      {-1, L"Encoder is closed"},
                                                      {-2, L"Cannot open encoder"},
                                                      {-4, L"No encoder found"},
                                                      {-5, L"Encoder command failed"},
                                                      {-6, L"Encoder failure"},
                                                      {-7, L"Authentication failure"},
                                                      {-8, L"No card in encoder"}};

std::wstring DescriptionOf(const CError& record)
{
    if (record.Number != NotFound) {
        return Descriptions.at(record.Number);
    }
    const bool isCommand = record.RdrCommand.find(L"SendCommandGetData:") != std::wstring::npos;
    return L"Can't find entry point " + (isCommand ? L"SendCommandGetData" : record.RdrCommand) +
           L" in ACGReader330";
}

class EveryFaultTest : public FaultTest
{
protected:
    /// Those of the calls that an operation makes: each once, twice in a row and for ever after.
    std::vector<NamedFault> FaultsOf(const Operation& operation)
    {
        const auto status = ScriptedReader::Status;
        const std::string tooLong = ReadReply + std::string(512, '0'); // longer than the buffer
        const std::pair<const char*, std::optional<std::string>> kinds[] = {
            {"missing", std::nullopt}, {"empty", ""},      {"data", "00"},     {"too long", tooLong},
            {"N", status('N')},        {"n", status('n')}, {"X", status('X')}, {"L", status('L')}};
        Prepare(operation);
        HostArguments host;
        Run(operation, host);
        std::vector<NamedFault> faults;
        std::map<std::string, int> occurrences;
        for (int call = 1; call <= std::ssize(reader.Calls); ++call) {
            const std::regex command(
                "SendCommandGetData \\d+ (.*) .*|(\\w+) .*"); // its name, or the function's
            std::string name =
                std::regex_replace(reader.Calls[static_cast<size_t>(call) - 1], command, "$1$2");
            const int occurrence = ++occurrences[name];
            name += occurrence == 1 ? "" : " " + std::to_string(occurrence);
            for (const auto& [kind, reply] : kinds) {
                faults.push_back({name + ": " + kind, {call, 1, reply}});
                faults.push_back({name + ": " + kind + ", twice", {call, 2, reply}});
                faults.push_back(
                    {name + ": " + kind + ", from then on", {call, ScriptedReader::Always, reply}});
            }
        }
        return faults;
    }
};

TEST_F(EveryFaultTest, LeavesAResultARecordAndAnObjectThatWorks)
{
    int count = 0;
    size_t rows = 0;
    for (const std::string type :
         {"MultiISO 2.5", "MultiISO 1.0"}) { // the second is asked nothing after a login
        reader.Type = type;
        for (const Operation& operation : Operations) {
            const std::wstring name =
                FromAnsi(operation.Name == "ReOpenEncoder" ? "OpenEncoder" : operation.Name);
            std::vector<NamedFault> faults = FaultsOf(operation);
            faults.push_back({"none", {}});
            for (const auto& [call, fault] : faults) {
                std::string where = type == "MultiISO 2.5" ? std::string() : type + ": ";
                where.append(operation.Name).append(", ").append(call);
                SCOPED_TRACE(where);
                Prepare(operation);
                const bool wasClosed = fault.Times == 0 && encoder.CloseEncoder() == sceSuccess;
                reader.Injected = fault;
                HostArguments host;
                const int32_t result = Run(operation, host);
                const CError left = Last();
                EXPECT_EQ(left.ComFunction, name);
                EXPECT_EQ(left.Number == 0, name == L"EncoderState" || result == sceSuccess);
                EXPECT_EQ(left.Description, DescriptionOf(left));
                EXPECT_LE(left.RdrRetCode.size(), 1U);
                EXPECT_EQ(ToLower(left.RdrCommand + left.RdrRetCode).find(L"d1ce"), std::wstring::npos);
                EXPECT_TRUE(operation.LeavesArguments(host, result == sceSuccess, left.RdrCommand));
                if (const auto row = ExpectedRecords.find(where); row != ExpectedRecords.end()) {
                    const auto& [number, path, letter] = row->second;
                    EXPECT_EQ(name == L"EncoderState" ? result : left.Number, number);
                    EXPECT_EQ(left.RdrCommand, path);
                    EXPECT_EQ(left.RdrRetCode, letter);
                    EXPECT_EQ(left.LastDllError,
                              !fault.Reply && left.Number != 0 ? ScriptedReader::MissingError : 0);
                    ++rows;
                }
                const bool isOpen =
                    name == L"OpenEncoder" ? result == sceSuccess : name != L"CloseEncoder" && !wasClosed;
                EXPECT_EQ(EncoderInside::HasComm(encoder), isOpen);
                EXPECT_EQ(EncoderInside::HasReader(encoder), isOpen);
                ExpectCleanLife();
                EXPECT_EQ(keysFreed, 0);
                ASSERT_FALSE(HasFailure());
                ++count;
            }
        }
    }
    EXPECT_EQ(rows, ExpectedRecords.size());
    std::printf("%d faults\n", count);
}

} // namespace
