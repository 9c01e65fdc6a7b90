#include "simulator/Replay.h"

#include "simulator/DeviceText.h"

#include <cerrno>
#include <fstream>
#include <mutex>
#include <system_error>

namespace simulator
{

using recorder::CallText;

Replay::Replay(const std::string& File)
{
    const std::string option = "replay=" + File;
    std::ifstream file(File, std::ios::binary);
    if (!file) {
        throw Refusal(option, std::generic_category().message(errno));
    }
    size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        std::optional<recorder::LoggedCall> logged = recorder::ParseLine(line);
        if (!logged) {
            throw Refusal(option, "line " + std::to_string(number) + " isn't one of a recorder's log");
        }
        if (!logged->Call.empty() && (!m_calls.empty() || logged->Call.starts_with("OpenComm "))) {
            m_calls.push_back(*std::move(logged));
        }
    }
    if (m_calls.empty()) {
        throw Refusal(option, "the file has no call of OpenComm");
    }
}

const std::string* Replay::ResultOf(const std::string& call)
{
    const std::lock_guard lock(m_mutex);
    if (m_ended) {
        return nullptr;
    }
    if (m_next < m_calls.size() && recorder::IsSameCall(m_calls[m_next].Call, call)) {
        return &m_calls[m_next++].Result;
    }
    m_ended = true;
    exports::Report("replay: expected " +
                    (m_next < m_calls.size() ? m_calls[m_next].Call : "no further call") + ", not " + call);
    return nullptr;
}

template <class Number>
Number Replay::PlayNumber(const std::string& call)
{
    const std::string* const result = ResultOf(call);
    return result != nullptr ? static_cast<Number>(recorder::NumberOf(*result)) : Number{0};
}

std::string Replay::PlayText(const std::string& call, std::string otherwise)
{
    const std::string* const result = ResultOf(call);
    return result != nullptr ? recorder::TextOf(*result) : std::move(otherwise);
}

Replay::Handle Replay::OpenComm(Text Device, uint8_t Autodetect, exports::CommSettings& Settings)
{
    return PlayNumber<Handle>(recorder::OpenCommText(Device, Autodetect, Settings));
}

int32_t Replay::SetCommTimeout(Handle Comm, int32_t Timeout)
{
    return PlayNumber<int32_t>(CallText("SetCommTimeout", {Comm, Timeout}));
}

int32_t Replay::SetCommProtocol(Handle Comm, uint8_t Protocol)
{
    return PlayNumber<int32_t>(CallText("SetCommProtocol", {Comm, Protocol}));
}

uint8_t Replay::GetCommProtocol(Handle Comm)
{
    return PlayNumber<uint8_t>(CallText("GetCommProtocol", {Comm}));
}

int32_t Replay::GetCommBaudRate(Handle Comm)
{
    return PlayNumber<int32_t>(CallText("GetCommBaudRate", {Comm}));
}

int32_t Replay::GetCommTimeout(Handle Comm)
{
    return PlayNumber<int32_t>(CallText("GetCommTimeout", {Comm}));
}

std::string Replay::DetectReader(Handle Comm, Buffer /*buffer*/)
{
    return PlayText(CallText("DetectReader", {Comm}));
}

Replay::Handle Replay::OpenReader(Handle Comm, uint8_t Id, int32_t Third)
{
    return PlayNumber<Handle>(CallText("OpenReader", {Comm, Id, Third}));
}

std::string Replay::GetReaderType(Handle Reader, Buffer /*buffer*/)
{
    return PlayText(CallText("GetReaderType", {Reader}));
}

std::string Replay::GetDeviceID(Handle Reader, Buffer /*buffer*/)
{
    return PlayText(CallText("GetDeviceID", {Reader}));
}

std::string Replay::SendCommandGetData(Handle Reader, Text Command, Text Data, Buffer buffer)
{
    return PlayText(recorder::CommandText(Reader, Command, Data),
                    ReaderLibrary::SendCommandGetData(Reader, Command, Data, buffer));
}

int32_t Replay::CloseReader(Handle Reader)
{
    return PlayNumber<int32_t>(CallText("CloseReader", {Reader}));
}

int32_t Replay::CloseComm(Handle Comm)
{
    return PlayNumber<int32_t>(CallText("CloseComm", {Comm}));
}

} // namespace simulator
