#include "acg/reader/ReaderDLL.h"

#include "acg/platform/AnsiText.h"
#include "acg/platform/Secret.h"

#include <array>
#include <atomic>
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

struct FunctionTexts {
    const char* Name;
    LiteralText NotFound;
};

// clang-format off
#define ACG_FUNCTION(name) { #name, L"Can't find entry point " #name " in " ACG_LIBRARY }
// clang-format on

/// In the order of ReaderFunction.
constexpr FunctionTexts Functions[] = {
    ACG_FUNCTION(OpenComm),        ACG_FUNCTION(SetCommTimeout),     ACG_FUNCTION(SetCommProtocol),
    ACG_FUNCTION(GetCommProtocol), ACG_FUNCTION(GetCommBaudRate),    ACG_FUNCTION(GetCommTimeout),
    ACG_FUNCTION(DetectReader),    ACG_FUNCTION(OpenReader),         ACG_FUNCTION(GetReaderType),
    ACG_FUNCTION(GetDeviceID),     ACG_FUNCTION(SendCommandGetData), ACG_FUNCTION(CloseReader),
    ACG_FUNCTION(CloseComm),
};
static_assert(std::size(Functions) == ReaderFunctionCount);

Failure CallFailure(ReaderFunction function, const EntryPoint& missing)
{
    if (!missing.LibraryLoaded) {
        return {FileNotFound, L"File not found: " ACG_LIBRARY, missing.SystemError};
    }
    return {EntryPointNotFound, Functions[static_cast<size_t>(function)].NotFound, missing.SystemError};
}

/// A text of NUL characters for the library to work in. It isn't read afterwards.
template <size_t Characters>
using Buffer = std::array<char, Characters + 1>;

} // namespace

const char* Name(ReaderFunction Function)
{
    return Functions[static_cast<size_t>(Function)].Name;
}

EntryPoint FindInLibrary(ReaderFunction Function)
{
    static constinit Library library(ACG_LIBRARY);
    static constinit std::array<std::atomic<EntryPoint::Function>, ReaderFunctionCount> found{};

    std::atomic<EntryPoint::Function>& known = found[static_cast<size_t>(Function)];
    if (const EntryPoint::Function address = known) {
        return {.Address = address, .LibraryLoaded = true};
    }
    const EntryPoint entry = library.Find(Name(Function));
    known = entry.Address;
    return entry;
}

ReaderDLL::ReaderDLL() : ReaderDLL(FindInLibrary) {}

ReaderDLL::ReaderDLL(EntryPointLookUp LookUp) : m_lookUp(std::move(LookUp)) {}

template <class Result, class... Arguments>
Failure ReaderDLL::Call(ReaderFunction Function, Result& result, Arguments... arguments) const
{
    const EntryPoint entry = m_lookUp(Function);
    if (entry.Address == nullptr) {
        return CallFailure(Function, entry);
    }
    using Signature = Result(ACG_READER_CALL*)(Arguments...);
    result = reinterpret_cast<Signature>(entry.Address)(arguments...);
    return {};
}

template <class... Arguments>
Failure ReaderDLL::CallForText(ReaderFunction Function, std::wstring& Text, Arguments... arguments) const
{
    char* bytes = nullptr;
    const Failure failure = Call(Function, bytes, arguments...);
    const ByteString owner(bytes);
    if (!failure) {
        ReplaceByAnsi(Text, owner.Bytes());
    }
    return failure;
}

Failure ReaderDLL::OpenComm(std::wstring_view Device, uint8_t Autodetect, CommSettings& Settings,
                            CommHandle& Comm) const
{
    return Call(ReaderFunction::OpenComm, Comm, ToAnsi(Device).c_str(), Autodetect, &Settings);
}

Failure ReaderDLL::SetCommTimeout(CommHandle Comm, int32_t Timeout) const
{
    int32_t notRead = 0;
    return Call(ReaderFunction::SetCommTimeout, notRead, Comm, Timeout);
}

Failure ReaderDLL::SetCommProtocol(CommHandle Comm, uint8_t Protocol) const
{
    int32_t notRead = 0;
    return Call(ReaderFunction::SetCommProtocol, notRead, Comm, Protocol);
}

Failure ReaderDLL::GetCommProtocol(CommHandle Comm, uint8_t& Protocol) const
{
    return Call(ReaderFunction::GetCommProtocol, Protocol, Comm);
}

Failure ReaderDLL::GetCommBaudRate(CommHandle Comm, int32_t& BaudRate) const
{
    return Call(ReaderFunction::GetCommBaudRate, BaudRate, Comm);
}

Failure ReaderDLL::GetCommTimeout(CommHandle Comm, int32_t& Timeout) const
{
    return Call(ReaderFunction::GetCommTimeout, Timeout, Comm);
}

Failure ReaderDLL::DetectReader(CommHandle Comm, std::string& Readers) const
{
    Buffer<256> buffer{};
    char* bytes = nullptr;
    const Failure failure = Call(ReaderFunction::DetectReader, bytes, Comm, buffer.data());
    const ByteString owner(bytes);
    if (!failure) {
        Readers = owner.Bytes().substr(0, owner.Bytes().find('\0'));
    }
    return failure;
}

Failure ReaderDLL::OpenReader(CommHandle Comm, uint8_t ReaderId, ReaderHandle& Reader) const
{
    const int32_t thirdArgument = 0; // required by the library; always 0
    return Call(ReaderFunction::OpenReader, Reader, Comm, ReaderId, thirdArgument);
}

Failure ReaderDLL::GetReaderType(ReaderHandle Reader, std::wstring& Type) const
{
    Buffer<100> buffer{};
    return CallForText(ReaderFunction::GetReaderType, Type, Reader, buffer.data());
}

Failure ReaderDLL::GetDeviceID(ReaderHandle Reader, std::wstring& Id) const
{
    Buffer<20> buffer{};
    return CallForText(ReaderFunction::GetDeviceID, Id, Reader, buffer.data());
}

Failure ReaderDLL::SendCommandGetData(ReaderHandle Reader, const char* Command, const char* Data,
                                      ByteString& Reply)
{
    char* bytes = nullptr;
    const Failure failure =
        Call(ReaderFunction::SendCommandGetData, bytes, Reader, Command, Data, m_replyBuffer);
    Wipe(m_replyBuffer, sizeof m_replyBuffer);
    Reply = ByteString(bytes);
    return failure;
}

Failure ReaderDLL::CloseReader(ReaderHandle Reader) const
{
    int32_t notRead = 0;
    return Call(ReaderFunction::CloseReader, notRead, Reader);
}

Failure ReaderDLL::CloseComm(CommHandle Comm) const
{
    int32_t notRead = 0;
    return Call(ReaderFunction::CloseComm, notRead, Comm);
}

} // namespace acg
