// A reader library that passes every call on to the next one and writes it to a log, without keys.
#pragma once

#include "abi/Functions.h"
#include "acg/platform/Mutex.h"
#include "recorder/LogWriter.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <type_traits>

namespace recorder
{

/// The functions of the next library.
struct NextLibrary {
    decltype(&::OpenComm) OpenComm = nullptr;
    decltype(&::SetCommTimeout) SetCommTimeout = nullptr;
    decltype(&::SetCommProtocol) SetCommProtocol = nullptr;
    decltype(&::GetCommProtocol) GetCommProtocol = nullptr;
    decltype(&::GetCommBaudRate) GetCommBaudRate = nullptr;
    decltype(&::GetCommTimeout) GetCommTimeout = nullptr;
    decltype(&::DetectReader) DetectReader = nullptr;
    decltype(&::OpenReader) OpenReader = nullptr;
    decltype(&::GetReaderType) GetReaderType = nullptr;
    decltype(&::GetDeviceID) GetDeviceID = nullptr;
    decltype(&::SendCommandGetData) SendCommandGetData = nullptr;
    decltype(&::CloseReader) CloseReader = nullptr;
    decltype(&::CloseComm) CloseComm = nullptr;
};

/// The session begins at the first call, which opens the log and loads the next library. Where the library
/// can't be used, every function returns what it does for a handle that isn't open, and each OpenComm tries
/// again. Where the log can't be written, the calls are passed on all the same.
///
/// Its functions can be called from several threads, and the next library's are then too. After a call the
/// system's error code is the one that the next library has left.
class Recorder final : public exports::ReaderLibrary
{
public:
    Handle OpenComm(Text Device, uint8_t Autodetect, exports::CommSettings& Settings) override;
    int32_t SetCommTimeout(Handle Comm, int32_t Timeout) override;
    int32_t SetCommProtocol(Handle Comm, uint8_t Protocol) override;
    uint8_t GetCommProtocol(Handle Comm) override;
    int32_t GetCommBaudRate(Handle Comm) override;
    int32_t GetCommTimeout(Handle Comm) override;
    std::string DetectReader(Handle Comm, Buffer Room) override;
    Handle OpenReader(Handle Comm, uint8_t Id, int32_t Third) override;
    std::string GetReaderType(Handle Reader, Buffer Room) override;
    std::string GetDeviceID(Handle Reader, Buffer Room) override;
    std::string SendCommandGetData(Handle Reader, Text Command, Text Data, Buffer Room) override;
    int32_t CloseReader(Handle Reader) override;
    int32_t CloseComm(Handle Comm) override;

    /// The process ends: from now on nothing is held back from the log.
    void End() noexcept;

private:
    using Clock = std::chrono::steady_clock;

    /// The result of the call of the next library; `closed` if there is none. Describe makes the text of
    /// the result for the log.
    template <class Call, class Describe, class Result = std::invoke_result_t<Call, const NextLibrary&>>
    Result Pass(std::string call, const Call& next, const Describe& describe, Result closed = {});
    template <class Call>
    auto Pass(std::string call, const Call& next)
    {
        return Pass(std::move(call), next, [](const auto& result) { return ResultText(result); });
    }

    void Begin(bool IsOpening);
    void Load();

    acg::Mutex m_mutex;
    LogWriter m_log;
    std::atomic<bool> m_isEnding = false;
    Clock::time_point m_start;
    bool m_begun = false;
    std::shared_ptr<const NextLibrary> m_next; ///< null if it can't be used
};

} // namespace recorder
