// Turns the functions of a reader library into one.
#pragma once

#include "session/SessionLog.h"

#include <type_traits>

namespace session
{

using acgreader::Function;

/// Each function calls the member template of the derived class
///
///     Result Call<Function>(Result closed, const Describe& describe, std::string call, arguments...)
///
/// closed: the result if no handle is open. call: the call as it is in the log; describe(result) is its
/// result there. arguments: as the function has them.
template <class Derived>
class CallForwarder : public acgreader::ReaderLibrary
{
public:
    Handle OpenComm(Text device, uint8_t autodetect, acgreader::CommSettings& settings) override
    {
        return Forward<Function::OpenComm>(device, autodetect, settings);
    }
    int32_t SetCommTimeout(Handle comm, int32_t milliseconds) override
    {
        return Forward<Function::SetCommTimeout>(comm, milliseconds);
    }
    int32_t SetCommProtocol(Handle comm, uint8_t protocol) override
    {
        return Forward<Function::SetCommProtocol>(comm, protocol);
    }
    uint8_t GetCommProtocol(Handle comm) override { return Forward<Function::GetCommProtocol>(comm); }
    int32_t GetCommBaudRate(Handle comm) override { return Forward<Function::GetCommBaudRate>(comm); }
    int32_t GetCommTimeout(Handle comm) override { return Forward<Function::GetCommTimeout>(comm); }
    std::string DetectReader(Handle comm, Buffer buffer) override
    {
        return Forward<Function::DetectReader>(comm, buffer);
    }
    Handle OpenReader(Handle comm, uint8_t id, int32_t zero) override
    {
        return Forward<Function::OpenReader>(comm, id, zero);
    }
    std::string GetReaderType(Handle reader, Buffer buffer) override
    {
        return Forward<Function::GetReaderType>(reader, buffer);
    }
    std::string GetDeviceID(Handle reader, Buffer buffer) override
    {
        return Forward<Function::GetDeviceID>(reader, buffer);
    }
    /// The one function whose texts may hold a key.
    std::string SendCommandGetData(Handle reader, Text command, Text data, Buffer buffer) override
    {
        return static_cast<Derived*>(this)->template Call<Function::SendCommandGetData>(
            ReaderLibrary::SendCommandGetData(reader, command, data, buffer),
            [&](const std::string& reply) { return ReplyText(command, data, reply); },
            CommandText(reader, command, data), reader, command, data, buffer);
    }
    int32_t CloseReader(Handle reader) override { return Forward<Function::CloseReader>(reader); }
    int32_t CloseComm(Handle comm) override { return Forward<Function::CloseComm>(comm); }

private:
    template <class Result, class... Parameters>
    static Result ResultOf(Result(ACG_READER_CALL*)(Parameters...));

    template <Function function, class... Arguments>
    auto Forward(Arguments&... arguments)
    {
        using Returned = decltype(ResultOf(acgreader::Pointer<function>()));
        using Result = std::conditional_t<std::is_pointer_v<Returned>, std::string, Returned>;
        return static_cast<Derived*>(this)->template Call<function>(
            Result(), [](const Result& result) { return ResultText(result); },
            CallText(function, {arguments...}), arguments...);
    }
};

} // namespace session
