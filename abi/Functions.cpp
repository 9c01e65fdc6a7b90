// The exported functions.
#include "abi/Functions.h"

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

using exports::ReaderLibrary;
using exports::TheLibrary;
using Handle = ReaderLibrary::Handle;

#ifdef _WIN32
/// The library stays loaded however often its hosts free it. Elsewhere the linker has marked it so.
const BOOL isPinned = [] {
    HMODULE self = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                              reinterpret_cast<LPCWSTR>(&isPinned), &self);
}();
#endif

/// Calls the library. No exception gets past here.
template <class Result, class... Parameters>
Result Call(Result (ReaderLibrary::*function)(Parameters...),
            std::type_identity_t<Parameters>... arguments) noexcept
{
    try {
        return (TheLibrary().*function)(arguments...);
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

ReaderLibrary::Text TextOf(const char* text)
{
    return text != nullptr ? text : "";
}

ReaderLibrary::Buffer BufferOf(char* buffer, size_t size)
{
    return {buffer, buffer != nullptr ? size : 0};
}

} // namespace

extern "C" {

Handle READER_CALL OpenComm(const char* Device, uint8_t Autodetect, exports::CommSettings* Settings)
{
    return Settings == nullptr ? 0 : Call(&ReaderLibrary::OpenComm, TextOf(Device), Autodetect, *Settings);
}

int32_t READER_CALL SetCommTimeout(Handle Comm, int32_t Timeout)
{
    return Call(&ReaderLibrary::SetCommTimeout, Comm, Timeout);
}

int32_t READER_CALL SetCommProtocol(Handle Comm, uint8_t Protocol)
{
    return Call(&ReaderLibrary::SetCommProtocol, Comm, Protocol);
}

uint8_t READER_CALL GetCommProtocol(Handle Comm)
{
    return Call(&ReaderLibrary::GetCommProtocol, Comm);
}

int32_t READER_CALL GetCommBaudRate(Handle Comm)
{
    return Call(&ReaderLibrary::GetCommBaudRate, Comm);
}

int32_t READER_CALL GetCommTimeout(Handle Comm)
{
    return Call(&ReaderLibrary::GetCommTimeout, Comm);
}

char* READER_CALL DetectReader(Handle Comm, char* Buffer)
{
    return NewByteString(Call(&ReaderLibrary::DetectReader, Comm, BufferOf(Buffer, 256)));
}

Handle READER_CALL OpenReader(Handle Comm, uint8_t Id, int32_t Third)
{
    return Call(&ReaderLibrary::OpenReader, Comm, Id, Third);
}

char* READER_CALL GetReaderType(Handle Reader, char* Buffer)
{
    return NewByteString(Call(&ReaderLibrary::GetReaderType, Reader, BufferOf(Buffer, 100)));
}

char* READER_CALL GetDeviceID(Handle Reader, char* Buffer)
{
    return NewByteString(Call(&ReaderLibrary::GetDeviceID, Reader, BufferOf(Buffer, 20)));
}

char* READER_CALL SendCommandGetData(Handle Reader, const char* Command, const char* Data, char* Buffer)
{
    return NewByteString(Call(&ReaderLibrary::SendCommandGetData, Reader, TextOf(Command), TextOf(Data),
                              BufferOf(Buffer, 512)));
}

int32_t READER_CALL CloseReader(Handle Reader)
{
    return Call(&ReaderLibrary::CloseReader, Reader);
}

int32_t READER_CALL CloseComm(Handle Comm)
{
    return Call(&ReaderLibrary::CloseComm, Comm);
}

} // extern "C"

auto exports::FindFunction(std::string_view Name) -> void (*)()
{
    struct Export {
        std::string_view Name;
        void (*Address)();
    };
#define EXPORT(name)                                                                                         \
    {                                                                                                        \
#name, reinterpret_cast < void (*)()>(name)                                                          \
    }
    static const Export all[] = {EXPORT(OpenComm),        EXPORT(SetCommTimeout),     EXPORT(SetCommProtocol),
                                 EXPORT(GetCommProtocol), EXPORT(GetCommBaudRate),    EXPORT(GetCommTimeout),
                                 EXPORT(DetectReader),    EXPORT(OpenReader),         EXPORT(GetReaderType),
                                 EXPORT(GetDeviceID),     EXPORT(SendCommandGetData), EXPORT(CloseReader),
                                 EXPORT(CloseComm)};
    for (const auto& [name, address] : all) {
        if (name == Name) {
            return address;
        }
    }
    return nullptr;
}
