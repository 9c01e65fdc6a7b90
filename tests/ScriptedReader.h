// A reader library that answers by script, and what the tests of the encoder have in common.
#pragma once

#include "abi/ReaderLibrary.h"
#include "acg/encoder/Encoder.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

namespace acg
{

/// Whose code is running: the component's, or that of its test and the scripted reader. The memory tests look
/// at the component alone.
class RunningCode
{
public:
    explicit RunningCode(bool ofComponent) : m_former(std::exchange(IsComponents, ofComponent)) {}
    ~RunningCode() { IsComponents = m_former; }
    RunningCode(const RunningCode&) = delete;
    RunningCode& operator=(const RunningCode&) = delete;

    inline static bool IsComponents = false;

private:
    bool m_former;
};

/// Stands in for the library: its thirteen functions are reached through the real ReaderDLL, text conversion,
/// freeing and failure handling included. The one that was asked for a function last is called.
///
/// It answers as a reader with a card in its field does, and accepts every login. A command that has no reply
/// in the script is a test failure.
class ScriptedReader final : private acgreader::ReaderLibrary
{
public:
    static constexpr int Always = 1000000;
    static constexpr int32_t MissingError = 127; ///< the system's error code of a function that is missing

    [[nodiscard]] ReaderDLL DLL()
    {
        return ReaderDLL([this](ReaderFunction function) { return Find(function); });
    }

    // What the functions of the link answer.
    Handle Comm = 0x11;
    Handle Reader = 0x22;
    std::string Readers = "A";
    std::string Type = "MultiISO 2.5";
    std::string DeviceID = "ID 7";

    /// What commands are answered.
    std::map<std::string, std::string> Replies = {
        {"use iso14443a", ""}, {"antenna on", ""}, {"select", "04a1B2C3"}, {"login", Status('L')}};
    /// A reply of a status letter.
    [[nodiscard]] static std::string Status(char letter) { return {letter, '\0'}; }

    std::set<ReaderFunction> Missing; ///< can't be found
    bool LibraryMissing = false;

    /// Calls, of any function, that can't be made. Where there is a Reply, a command is answered by it, and
    /// any other function by empty text or 0. FromCall counts from 1 at the last Forget.
    struct Fault {
        int FromCall = Always;
        int Times = 0;
        std::optional<std::string> Reply;

        [[nodiscard]] bool Hits(int call) const { return call >= FromCall && call - FromCall < Times; }
    };
    Fault Injected;

    // Since the last Forget:
    std::vector<std::string> Calls; ///< each with its arguments, but no key
    std::string Commands;           ///< those among the calls, with their data text, joined by ", "
    std::set<std::string> Sent;     ///< the same with the keys, so not to be printed
    void Forget();

private:
    friend acgreader::ReaderLibrary& acgreader::TheLibrary();

    Handle OpenComm(Text device, uint8_t autodetect, acgreader::CommSettings& settings) override
    {
        const int32_t baudRate = std::exchange(settings.BaudRate, -1); // nobody reads it
        return Answer(Comm, device, int{autodetect}, baudRate, int{settings.Protocol});
    }
    int32_t SetCommTimeout(Handle comm, int32_t timeout) override { return Answer(0, comm, timeout); }
    int32_t SetCommProtocol(Handle comm, uint8_t protocol) override { return Answer(0, comm, int{protocol}); }
    uint8_t GetCommProtocol(Handle comm) override { return Answer(uint8_t{1}, comm); }
    int32_t GetCommBaudRate(Handle comm) override { return Answer(57600, comm); }
    int32_t GetCommTimeout(Handle comm) override { return Answer(1234, comm); }
    std::string DetectReader(Handle comm, Buffer in) override { return AnswerIn(in, Readers, comm); }
    Handle OpenReader(Handle comm, uint8_t id, int32_t i) override
    {
        return Answer(Reader, comm, int{id}, i);
    }
    std::string GetReaderType(Handle reader, Buffer in) override { return AnswerIn(in, Type, reader); }
    std::string GetDeviceID(Handle reader, Buffer in) override { return AnswerIn(in, DeviceID, reader); }
    std::string SendCommandGetData(Handle reader, Text command, Text data, Buffer buffer) override;
    int32_t CloseReader(Handle reader) override { return Answer(0, reader); }
    int32_t CloseComm(Handle comm) override { return Answer(0, comm); }

    EntryPoint Find(ReaderFunction function);
    /// Lists the call. Returns what it is answered with.
    template <class Result, class... Arguments>
    Result Answer(const Result& result, const Arguments&... arguments)
    {
        const RunningCode ofTest(/*ofComponent=*/false);
        std::ostringstream line;
        line << m_function;
        ((line << ' ' << arguments), ...);
        Calls.push_back(line.str());
        return IsReplyInjected() ? Result() : result;
    }
    [[nodiscard]] bool IsReplyInjected() const { return Injected.Reply && Injected.Hits(m_calls); }
    /// The same, and uses the whole buffer, as a library may.
    template <class... Arguments>
    std::string AnswerIn(Buffer buffer, const std::string& text, const Arguments&... arguments)
    {
        const std::string_view all(buffer.data(), buffer.data() != nullptr ? buffer.size() + 1 : 0);
        EXPECT_EQ(all.find_first_not_of('\0'), std::string_view::npos);
        std::ranges::fill(buffer, 'z');
        return Answer(text, arguments...);
    }

    inline static ScriptedReader* current = nullptr;
    const char* m_function = "";
    int m_calls = 0; ///< since the last Forget, those that can't be made among them
};

/// Looks inside an Encoder.
struct EncoderInside {
    static bool HasComm(const Encoder& encoder) { return encoder.m_hComm != CommHandle::None; }
    static bool HasReader(const Encoder& encoder) { return encoder.m_hReader != ReaderHandle::None; }
    static const auto& ValueBlocks(const Encoder& encoder) { return encoder.m_colValueBlocks; }
};

std::ostream& operator<<(std::ostream& out, const CError& record);

/// The record of a success.
inline CError Clean(std::wstring_view ComFunction)
{
    return {.ComFunction = std::wstring(ComFunction)};
}

/// The number that OpenEncoder requires, new at each call.
inline int32_t DrawHandle(Encoder& encoder)
{
    const std::wstring information = encoder.GetInformation();
    return std::stoi(information.substr(information.find(L"|1|") + 3));
}
/// An encoder on a scripted reader. Each look at the clock lets a second go by.
class EncoderTest : public testing::Test
{
protected:
    ScriptedReader reader;
    std::chrono::steady_clock::time_point now;
    Encoder encoder{reader.DLL(), [this] { return now += std::chrono::seconds(1); }};

    /// Opens, and forgets the calls of it.
    void Open()
    {
        ASSERT_EQ(encoder.OpenEncoder(DrawHandle(encoder)), sceSuccess);
        reader.Forget();
    }
    [[nodiscard]] CError Last() { return *encoder.LastError(); }
};

inline constexpr const char* SelectCommands = "use iso14443a , antenna on , select ";

} // namespace acg
