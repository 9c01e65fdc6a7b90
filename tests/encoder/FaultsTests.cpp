// Every public operation under every fault of every call that it makes.
#include "platform/AnsiText.h"
#include "platform/TextCase.h"
#include "tests/encoder/Operations.h"

#include <algorithm>
#include <cstdio>

using namespace acg;

namespace
{

const std::optional<std::string> Missing; ///< the function isn't there

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order of a row
struct Expected {
    const char* Operation;
    const char* Call; ///< the reader function or command
    std::optional<std::string> Reply;
    int32_t Number; ///< of the record; for EncoderState the state
    std::wstring Path;
    const wchar_t* Letter = L"";
    int Occurrence = 1; ///< of the call in the operation
};

constexpr int32_t NotFound = 453;
const std::string Data = "00";
const auto Letter = ScriptedReader::Status;
const std::wstring Exchange = L"EncoderCommand:SendCommandGetData:";
const std::wstring Selecting = L"SelectCardInRange";

const Expected Rows[] = {
    {"OpenEncoder", "OpenComm", Missing, NotFound, L"OpenComm"},
    {"OpenEncoder", "OpenComm", "", -2, L"OpenComm"},
    {"OpenEncoder", "SetCommTimeout", Missing, NotFound, L"SetCommTimeout"},
    {"OpenEncoder", "SetCommProtocol", Missing, NotFound, L"SetCommProtocol"},
    {"OpenEncoder", "DetectReader", Missing, NotFound, L"DetectReader"},
    {"OpenEncoder", "DetectReader", "", -4, L"DetectReader", L"0"},
    {"OpenEncoder", "OpenReader", Missing, NotFound, L"OpenReader"},
    {"OpenEncoder", "OpenReader", "", -2, L"OpenReader", L"0"},
    {"OpenEncoder", "select", Letter('N'), 0},
    {"CloseEncoder", "CloseReader", Missing, NotFound, L"CloseReader"},
    {"CloseEncoder", "CloseComm", Missing, NotFound, L"CloseComm"},
    {"EncoderState", "select", Letter('N'), sceOpened},
    {"EncoderState", "select", Letter('X'), sceReady},
    {"EncoderState", "select", Letter('F'), sceUnknown},
    {"EncoderState", "GetReaderType", Missing, sceReady},
    {"ReaderType", "GetReaderType", Missing, NotFound, L"GetReaderType"},
    {"ReadSerialNumber", "select", Letter('N'), -8},
    {"ReadSerialNumber", "select", Letter('n'), -5, Exchange + L"select", L"n"},
    {"ReadDataBloc", "use iso14443a", Missing, 0},
    {"ReadDataBloc", "antenna on", Letter('F'), 0},
    {"ReadDataBloc", "select", Letter('N'), -8, Selecting},
    {"ReadDataBloc", "select", Letter('C'), -5, Selecting + L":" + Exchange + L"select", L"C"},
    {"ReadDataBloc", "select", Missing, NotFound, Selecting + L":" + Exchange + L"select"},
    {"ReadDataBloc", "login", Letter('l'), -7, Exchange + L"login", L"l"},
    {"ReadDataBloc", "login", Missing, -7, Exchange + L"login"},
    {"ReadDataBloc", "login", Data, -6, L"ReaderType"},
    {"ReadDataBloc", "read block", Letter('N'), -5, Exchange + L"read block", L"N"},
    {"ReadDataBloc", "read block", Missing, NotFound, Exchange + L"read block"},
    {"WriteDataBloc", "login", Letter('X'), -7, Exchange + L"login", L"X"},
    {"WriteDataBloc", "write block", Letter('F'), -5, Exchange + L"write block", L"F"},
    {"WriteValueBloc", "login", Data, -6, L"ReaderType"},
    {"WriteValueBloc", "write vblock", Letter('I'), -5, Exchange + L"write vblock", L"I"},
    {"ReadManufacturerCode", "select", Letter('N'), -8, L"ReadDataBloc:" + Selecting},
    {"ReadSectorTrailer", "login", Letter('X'), -7, L"ReadDataBloc:" + Exchange + L"login", L"X"},
    {"WriteSectorTrailer", "login", Data, -6, L"ReadSectorTrailer:ReadDataBloc:ReaderType", L"", 2},
    {"WriteSectorTrailer", "write block", Missing, NotFound, L"WriteDataBloc:" + Exchange + L"write block"},
    {"WriteBytesInBloc", "read block", Letter('F'), -5, L"ReadDataBloc:" + Exchange + L"read block", L"F"},
    {"WriteBytesInBloc", "select", Letter('N'), -8, L"WriteDataBloc:" + Selecting, L"", 2},
};

/// Of the numbers 0 to -8.
constexpr const wchar_t* Descriptions[] = {L"",
                                           L"",
                                           L"Cannot open encoder",
                                           L"",
                                           L"No encoder found",
                                           L"Encoder command failed",
                                           L"Encoder failure",
                                           L"Authentication failure",
                                           L"No card in encoder"};

std::wstring DescriptionOf(const Expected& row)
{
    const bool isCommand = std::islower(static_cast<unsigned char>(*row.Call)) != 0;
    return row.Number != NotFound
               ? Descriptions[-row.Number]
               : CallFailed(FromAnsi(isCommand ? "SendCommandGetData" : row.Call), L"", L"").Description;
}

TEST_F(FaultTest, EachFaultHasItsNumberItsPathAndItsLetter)
{
    for (const Expected& row : Rows) {
        SCOPED_TRACE(row.Operation + std::string(", ") + row.Call +
                     row.Reply.value_or(" missing").substr(0, 8));
        const auto operation = std::ranges::find(Operations, row.Operation, &Operation::Name);
        HostArguments host;
        Prepare(*operation);
        Run(*operation, host);
        int occurrence = 0;
        const auto call = std::ranges::find_if(reader.Calls, [&](const std::string& called) {
            return called.find(row.Call) != std::string::npos && ++occurrence == row.Occurrence;
        });
        ASSERT_NE(call, reader.Calls.end());
        Prepare(*operation);
        reader.Injected = {static_cast<int>(call - reader.Calls.begin()) + 1, 1, row.Reply};
        const int32_t result = Run(*operation, host);
        const std::wstring name = FromAnsi(operation->Name);
        if (name == L"EncoderState") {
            EXPECT_EQ(result, row.Number);
            EXPECT_EQ(Last(), Clean(name));
            continue;
        }
        EXPECT_EQ(result, row.Number == 0 ? sceSuccess : sceError);
        const int32_t systemError = !row.Reply && row.Number != 0 ? ScriptedReader::MissingError : 0;
        EXPECT_EQ(Last(), (CError{row.Number, DescriptionOf(row), systemError, name, row.Path, row.Letter}));
    }
}

TEST_F(FaultTest, EveryFaultLeavesAResultARecordAndAnObjectThatWorks)
{
    int count = 0;
    for (const char* type : {"MultiISO 2.5", "MultiISO 1.0"}) { // the second is asked nothing after a login
        reader.Type = type;
        for (const Operation& operation : Operations) {
            std::vector<ScriptedReader::Fault> faults = FaultsOf(operation);
            faults.push_back({}); // and none, with a closed encoder
            for (const ScriptedReader::Fault& fault : faults) {
                SCOPED_TRACE(operation.Name + " call " + std::to_string(fault.FromCall) + ", " +
                             fault.Reply.value_or("missing").substr(0, 1));
                Prepare(operation);
                if (fault.Times == 0) {
                    encoder.CloseEncoder();
                }
                reader.Injected = fault;
                HostArguments host;
                const int32_t result = Run(operation, host);
                const CError left = Last();
                const std::string name = operation.Name == "ReOpenEncoder" ? "OpenEncoder" : operation.Name;
                EXPECT_EQ(left.ComFunction, FromAnsi(name));
                EXPECT_EQ(left.Number == 0, name == "EncoderState" || result == sceSuccess);
                EXPECT_EQ(left.Number == 0, left.Description.empty());
                EXPECT_LE(left.RdrRetCode.size(), 1U);
                const std::wstring texts = left.Description + left.RdrCommand + left.RdrRetCode;
                EXPECT_EQ(ToLower(texts).find(L"d1ce"), std::wstring::npos);
                EXPECT_TRUE(operation.LeavesArguments(host, result == sceSuccess, left.RdrCommand));
                const bool isOpen =
                    name == "OpenEncoder" ? result == sceSuccess : name != "CloseEncoder" && fault.Times != 0;
                EXPECT_EQ(EncoderInside::Comm(encoder) != 0, isOpen);
                EXPECT_EQ(EncoderInside::Reader(encoder) != 0, isOpen);
                ExpectCleanLife();
                EXPECT_EQ(keysFreed, 0);
                ASSERT_FALSE(HasFailure());
                ++count;
            }
        }
    }
    std::printf("%d faults\n", count);
}

} // namespace
