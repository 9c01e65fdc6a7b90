// A reader library that answers from the log of a recorded session.
#pragma once

#include "exports/Mutex.h"
#include "exports/ReaderLibrary.h"
#include "recorder/SessionLog.h"

#include <string>
#include <vector>

namespace simulator
{

/// Plays the calls of a log from its first OpenComm on: each has to be the next one, and returns what it did
/// then. The device and masked keys may differ, and the times don't count. The first call that isn't next is
/// reported on the standard error; it and all that follow return what they do for a handle that isn't open.
class Replay final : public exports::ReaderLibrary
{
public:
    /// Throws a Refusal where the file can't be read or isn't a log with an OpenComm in it.
    explicit Replay(const std::string& File);

    Handle OpenComm(Text Device, uint8_t Autodetect, exports::CommSettings& Settings) override;
    int32_t SetCommTimeout(Handle Comm, int32_t Timeout) override;
    int32_t SetCommProtocol(Handle Comm, uint8_t Protocol) override;
    uint8_t GetCommProtocol(Handle Comm) override;
    int32_t GetCommBaudRate(Handle Comm) override;
    int32_t GetCommTimeout(Handle Comm) override;
    std::string DetectReader(Handle Comm, Buffer) override;
    Handle OpenReader(Handle Comm, uint8_t Id, int32_t Third) override;
    std::string GetReaderType(Handle Reader, Buffer) override;
    std::string GetDeviceID(Handle Reader, Buffer) override;
    std::string SendCommandGetData(Handle Reader, Text Command, Text Data, Buffer) override;
    int32_t CloseReader(Handle Reader) override;
    int32_t CloseComm(Handle Comm) override;

private:
    /// Null where the call isn't the next one, or another wasn't before.
    [[nodiscard]] const std::string* ResultOf(const std::string& call);
    template <class Number>
    Number PlayNumber(const std::string& call);
    std::string PlayText(const std::string& call, std::string otherwise = {});

    exports::Mutex m_mutex;
    std::vector<recorder::LoggedCall> m_calls;
    size_t m_next = 0;
    bool m_ended = false;
};

} // namespace simulator
