#include "acg/reader/ReaderDLL.h"

#include "abi/ACGReader330.h"
#include "acg/platform/AnsiText.h"
#include "acg/platform/Secret.h"

#include <array>
#include <atomic>
#include <type_traits>
#include <utility>

namespace acg
{

namespace
{

#define ACG_LIBRARY "ACGReader330"

// "File not found" and "Specified DLL function not found" in Microsoft's list of the trappable errors of
// Visual Basic, by which Automation hosts number them.
constexpr int32_t FileNotFound = 53;
constexpr int32_t EntryPointNotFound = 453;

#define ACG_NOT_FOUND(name) L"Can't find entry point " #name " in " ACG_LIBRARY,
/// By ReaderFunction.
// NOLINTNEXTLINE(bugprone-suspicious-missing-comma): each text is of three literals
constexpr LiteralText NotFoundTexts[] = {ACG_READER_FUNCTIONS(ACG_NOT_FOUND)};
#undef ACG_NOT_FOUND

Failure CallFailure(ReaderFunction function, const EntryPoint& missing)
{
    if (!missing.LibraryLoaded) {
        return {FileNotFound, L"File not found: " ACG_LIBRARY, missing.SystemError};
    }
    return {EntryPointNotFound, NotFoundTexts[static_cast<size_t>(function)], missing.SystemError};
}

/// A handle as the library takes it; any other argument is unchanged.
template <class Argument>
auto Plain(Argument argument)
{
    if constexpr (std::is_enum_v<Argument>) {
        return static_cast<std::underlying_type_t<Argument>>(argument);
    } else {
        return argument;
    }
}

/// A text of NUL characters for the library to work in. It isn't read afterwards.
template <size_t Characters>
using Buffer = std::array<char, Characters + 1>;

} // namespace

const int ReaderFunctionCount = acgreader::FunctionCount;

EntryPoint FindInLibrary(ReaderFunction function)
{
    static constinit Library library(ACG_LIBRARY);
    static constinit std::array<std::atomic<EntryPoint::Function>, acgreader::FunctionCount> found{};

    std::atomic<EntryPoint::Function>& known = found[static_cast<size_t>(function)];
    if (const EntryPoint::Function address = known) {
        return {.Address = address, .LibraryLoaded = true};
    }
    const EntryPoint entry = library.Find(NameOf(function));
    known = entry.Address;
    return entry;
}

ReaderDLL::ReaderDLL() : ReaderDLL(FindInLibrary) {}

ReaderDLL::ReaderDLL(EntryPointLookUp lookUp) : m_lookUp(std::move(lookUp)) {}

template <ReaderFunction function, class Result, class... Arguments>
Failure ReaderDLL::Call(Result&& result, Arguments... arguments) const
{
    const EntryPoint entry = m_lookUp(function);
    if (entry.Address == nullptr) {
        return CallFailure(function, entry);
    }
    result = std::remove_reference_t<Result>{
        reinterpret_cast<acgreader::Pointer<function>>(entry.Address)(Plain(arguments)...)};
    return {};
}

template <ReaderFunction function, class... Arguments>
Failure ReaderDLL::CallForText(std::wstring& text, Arguments... arguments) const
{
    ByteString reply;
    const Failure failure = Call<function>(reply, arguments...);
    if (!failure) {
        ReplaceByAnsi(text, reply.Bytes());
    }
    return failure;
}

Failure ReaderDLL::OpenComm(std::wstring_view device, uint8_t autodetect, CommSettings& settings,
                            CommHandle& comm) const
{
    return Call<ReaderFunction::OpenComm>(comm, ToAnsi(device).c_str(), autodetect, &settings);
}

Failure ReaderDLL::SetCommTimeout(CommHandle comm, int32_t timeout) const
{
    return Call<ReaderFunction::SetCommTimeout>(int32_t(), comm, timeout);
}

Failure ReaderDLL::SetCommProtocol(CommHandle comm, uint8_t protocol) const
{
    return Call<ReaderFunction::SetCommProtocol>(int32_t(), comm, protocol);
}

Failure ReaderDLL::GetCommProtocol(CommHandle comm, uint8_t& protocol) const
{
    return Call<ReaderFunction::GetCommProtocol>(protocol, comm);
}

Failure ReaderDLL::GetCommBaudRate(CommHandle comm, int32_t& baudRate) const
{
    return Call<ReaderFunction::GetCommBaudRate>(baudRate, comm);
}

Failure ReaderDLL::GetCommTimeout(CommHandle comm, int32_t& timeout) const
{
    return Call<ReaderFunction::GetCommTimeout>(timeout, comm);
}

Failure ReaderDLL::DetectReader(CommHandle comm, std::string& readers) const
{
    Buffer<256> buffer{};
    ByteString reply;
    const Failure failure = Call<ReaderFunction::DetectReader>(reply, comm, buffer.data());
    if (!failure) {
        readers = reply.Bytes().substr(0, reply.Bytes().find('\0'));
    }
    return failure;
}

Failure ReaderDLL::OpenReader(CommHandle comm, uint8_t readerId, ReaderHandle& reader) const
{
    const int32_t thirdArgument = 0; // required by the library; always 0
    return Call<ReaderFunction::OpenReader>(reader, comm, readerId, thirdArgument);
}

Failure ReaderDLL::GetReaderType(ReaderHandle reader, std::wstring& type) const
{
    Buffer<100> buffer{};
    return CallForText<ReaderFunction::GetReaderType>(type, reader, buffer.data());
}

Failure ReaderDLL::GetDeviceID(ReaderHandle reader, std::wstring& id) const
{
    Buffer<20> buffer{};
    return CallForText<ReaderFunction::GetDeviceID>(id, reader, buffer.data());
}

Failure ReaderDLL::SendCommandGetData(ReaderHandle reader, const char* command, const char* data,
                                      ByteString& reply)
{
    reply = ByteString();
    const Failure failure =
        Call<ReaderFunction::SendCommandGetData>(reply, reader, command, data, m_replyBuffer);
    Wipe(m_replyBuffer, sizeof m_replyBuffer);
    return failure;
}

Failure ReaderDLL::CloseReader(ReaderHandle reader) const
{
    return Call<ReaderFunction::CloseReader>(int32_t(), reader);
}

Failure ReaderDLL::CloseComm(CommHandle comm) const
{
    return Call<ReaderFunction::CloseComm>(int32_t(), comm);
}

} // namespace acg
