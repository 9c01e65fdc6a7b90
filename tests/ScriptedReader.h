// A reader library that answers by script, and what the tests of the encoder have in common.
#pragma once

#include "encoder/Encoder.h"
#include "reader/ReaderDLL.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace acg
{

/// Whose code is running: the component's, or that of its test and the scripted reader. The memory tests look
/// at the component alone.
class Turn
{
public:
    explicit Turn(bool OfComponent) : m_former(std::exchange(IsComponents, OfComponent)) {}
    ~Turn() { IsComponents = m_former; }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    inline static bool IsComponents = false;

private:
    bool m_former;
};

/// Stands in for the library: its thirteen functions are reached through the real ReaderDLL, text conversion,
/// freeing and failure handling included. One at a time.
///
/// It answers as a reader with a card in its field does, and accepts every login. A command that has no reply
/// in the script is a test failure.
class ScriptedReader
{
public:
    ScriptedReader();
    ~ScriptedReader();
    ScriptedReader(const ScriptedReader&) = delete;
    ScriptedReader& operator=(const ScriptedReader&) = delete;

    static constexpr int Always = 1000000;
    static constexpr int32_t MissingError = 127; ///< the system's error code of a function that is missing

    [[nodiscard]] ReaderDLL DLL();

    // What the functions of the link answer.
    ReaderHandle Comm = 0x11;
    ReaderHandle Reader = 0x22;
    std::string Readers = "A";
    std::string Type = "MultiISO 2.5";
    std::string DeviceID = "ID 7";

    /// What commands are answered.
    std::map<std::string, std::string> Replies = {
        {"use iso14443a", ""}, {"antenna on", ""}, {"select", "04a1B2C3"}, {"login", Status('L')}};
    /// A reply of a status letter.
    [[nodiscard]] static std::string Status(char Letter) { return {Letter, '\0'}; }

    std::set<ReaderFunction> Missing; ///< can't be found
    bool LibraryMissing = false;

    /// Calls, of any function, that can't be made. Where there is a Reply, a command is answered by it, and
    /// any other function by empty text or a handle of 0. FromCall counts from 1 at the last Forget.
    struct Fault {
        int FromCall = Always;
        int Times = 0;
        std::optional<std::string> Reply;

        [[nodiscard]] bool Hits(int Call) const { return Call >= FromCall && Call - FromCall < Times; }
    };
    Fault Injected;

    /// What was called since the last Forget, with arguments; the digits of keys are masked.
    std::vector<std::string> Calls;
    void Forget();
    /// The commands among the calls, joined by ", ", with their data text.
    [[nodiscard]] std::string Commands() const;
    /// True if a command was called with exactly this data text. Tells of keys without printing them.
    [[nodiscard]] bool WasSent(const std::string& Command, const std::string& Data) const;

private:
    friend struct ScriptedFunctions;
    EntryPoint Find(ReaderFunction function);
    std::string Answer(const std::string& command, const std::string& data);
    /// What the call that is being made is to answer by the fault, or null.
    [[nodiscard]] const std::string* FaultReply() const;

    int m_calls = 0;
    std::vector<std::pair<std::string, std::string>> m_sent;
};

/// Looks inside an Encoder.
struct EncoderInside {
    static int32_t HandleNumber(const Encoder& encoder) { return encoder.m_lHandleNumber; }
    static ReaderHandle Comm(const Encoder& encoder) { return encoder.m_hComm; }
    static ReaderHandle Reader(const Encoder& encoder) { return encoder.m_hReader; }
    static const std::wstring& LowerReaderType(const Encoder& encoder) { return encoder.m_sReaderType; }
    static const std::optional<std::vector<int32_t>>& ValueBlocks(const Encoder& encoder)
    {
        return encoder.m_colValueBlocks;
    }
    static void AddValueBlock(Encoder& encoder, int32_t number)
    {
        encoder.m_colValueBlocks.emplace().push_back(number);
    }
    static void Trace(Encoder& encoder, std::wstring_view name) { encoder.TraceLastError(name); }
};

/// A record to compare with. Call failures: CallFailed.
struct Record {
    int32_t Number = 0;
    std::wstring Description;
    std::wstring ComFunction;
    std::wstring RdrCommand;
    std::wstring RdrRetCode;
    int32_t LastDllError = 0;

    bool operator==(const Record&) const = default;
};
[[nodiscard]] Record Clean(std::wstring_view ComFunction);
/// The record of a function that is missing.
[[nodiscard]] Record CallFailed(std::wstring_view Function, std::wstring_view ComFunction,
                                std::wstring_view RdrCommand);
std::ostream& operator<<(std::ostream& out, const Record& record);

/// An encoder on a scripted reader. Each look at the clock lets a second go by.
class EncoderTest : public testing::Test
{
protected:
    ScriptedReader reader;
    std::chrono::steady_clock::time_point now;
    Encoder encoder{reader.DLL(), [this] { return now += std::chrono::seconds(1); }};

    /// The number that OpenEncoder asks for, drawn anew.
    int32_t DrawHandle();
    /// Opens, and forgets the calls of it.
    void Open();
    [[nodiscard]] Record Last();
};

inline constexpr const char* SelectCommands = "use iso14443a , antenna on , select ";

} // namespace acg
