// The exported functions.
#include "abi/ReaderLibrary.h"

#include <type_traits>

#ifdef _WIN32
#include <windows.h>

#include <oleauto.h>
#else
#include <cstdlib>
#include <cstring>
#endif

namespace
{

using acgreader::Handle;
using acgreader::ReaderLibrary;

#ifdef _WIN32
/// The library stays loaded however often its hosts free it. Elsewhere the linker has marked it so.
const BOOL isPinned = [] {
    HMODULE self = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                              reinterpret_cast<LPCWSTR>(&isPinned), &self);
}();
#endif

/// Calls the library. No exception leaves it.
template <class Result, class... Parameters>
Result Call(Result (ReaderLibrary::*function)(Parameters...),
            std::type_identity_t<Parameters>... arguments) noexcept
{
    try {
        return (acgreader::TheLibrary().*function)(arguments...);
    } catch (...) {
        return (ReaderLibrary().*function)(arguments...);
    }
}

/// A byte string of the text, which the caller owns and frees. Null, which is empty text too, if there is no
/// memory. The text is wiped, as a reply may hold a key.
char* NewByteString(std::string text) noexcept
{
    const auto length = static_cast<uint32_t>(text.size());
#ifdef _WIN32
    auto* const bytes = reinterpret_cast<char*>(SysAllocStringByteLen(text.data(), length));
    SecureZeroMemory(text.data(), length);
    return bytes;
#else
    // The length, the bytes, and a NUL that isn't counted.
    auto* const memory = static_cast<char*>(std::malloc(sizeof(length) + length + 1));
    if (memory != nullptr) {
        std::memcpy(memory, &length, sizeof(length));
        std::memcpy(memory + sizeof(length), text.c_str(), length + 1);
    }
    explicit_bzero(text.data(), length);
    return memory != nullptr ? memory + sizeof(length) : nullptr;
#endif
}

const char* NotNull(const char* text)
{
    return text != nullptr ? text : "";
}

ReaderLibrary::Buffer BufferOf(char* buffer, size_t size)
{
    return {buffer, buffer != nullptr ? size : 0};
}

} // namespace

extern "C" {

Handle ACG_READER_CALL OpenComm(const char* device, uint8_t autodetect, acgreader::CommSettings* settings)
{
    return settings == nullptr ? 0 : Call(&ReaderLibrary::OpenComm, NotNull(device), autodetect, *settings);
}

int32_t ACG_READER_CALL SetCommTimeout(Handle comm, int32_t milliseconds)
{
    return Call(&ReaderLibrary::SetCommTimeout, comm, milliseconds);
}

int32_t ACG_READER_CALL SetCommProtocol(Handle comm, uint8_t protocol)
{
    return Call(&ReaderLibrary::SetCommProtocol, comm, protocol);
}

uint8_t ACG_READER_CALL GetCommProtocol(Handle comm)
{
    return Call(&ReaderLibrary::GetCommProtocol, comm);
}

int32_t ACG_READER_CALL GetCommBaudRate(Handle comm)
{
    return Call(&ReaderLibrary::GetCommBaudRate, comm);
}

int32_t ACG_READER_CALL GetCommTimeout(Handle comm)
{
    return Call(&ReaderLibrary::GetCommTimeout, comm);
}

char* ACG_READER_CALL DetectReader(Handle comm, char* buffer)
{
    return NewByteString(Call(&ReaderLibrary::DetectReader, comm, BufferOf(buffer, 256)));
}

Handle ACG_READER_CALL OpenReader(Handle comm, uint8_t id, int32_t zero)
{
    return Call(&ReaderLibrary::OpenReader, comm, id, zero);
}

char* ACG_READER_CALL GetReaderType(Handle reader, char* buffer)
{
    return NewByteString(Call(&ReaderLibrary::GetReaderType, reader, BufferOf(buffer, 100)));
}

char* ACG_READER_CALL GetDeviceID(Handle reader, char* buffer)
{
    return NewByteString(Call(&ReaderLibrary::GetDeviceID, reader, BufferOf(buffer, 20)));
}

char* ACG_READER_CALL SendCommandGetData(Handle reader, const char* command, const char* data, char* buffer)
{
    return NewByteString(Call(&ReaderLibrary::SendCommandGetData, reader, NotNull(command), NotNull(data),
                              BufferOf(buffer, 512)));
}

int32_t ACG_READER_CALL CloseReader(Handle reader)
{
    return Call(&ReaderLibrary::CloseReader, reader);
}

int32_t ACG_READER_CALL CloseComm(Handle comm)
{
    return Call(&ReaderLibrary::CloseComm, comm);
}

} // extern "C"

auto acgreader::FindFunction(Function function) -> void (*)()
{
#define ACG_ADDRESS(name) reinterpret_cast<void (*)()>(&::name),
    static void (*const addresses[])() = {ACG_READER_FUNCTIONS(ACG_ADDRESS)};
#undef ACG_ADDRESS
    return addresses[static_cast<int>(function)];
}
