// The binary interface of the reader library ACGReader330, for those who call it and those who play it.
// docs/reader-library.md says what each function does.
#pragma once

#include <cstdint>

#ifdef _WIN32
#define ACG_READER_CALL __stdcall
#else
#define ACG_READER_CALL
#endif

// Not abi, which the compiler's <cxxabi.h> takes.
namespace acgreader
{

using Handle = uint32_t; ///< of a link or of an opened reader; 0 is none

struct CommSettings {
    int32_t BaudRate = 0;
    uint8_t Protocol = 0; ///< 0 ASCII, 1 binary
    uint8_t Reserved[3] = {};
};
static_assert(sizeof(CommSettings) == 8);

} // namespace acgreader

// A result of char* is a byte string, which its receiver owns. A buffer has one NUL more than its size.
extern "C" {

acgreader::Handle ACG_READER_CALL OpenComm(const char* device, uint8_t autodetect,
                                           acgreader::CommSettings* settings);
int32_t ACG_READER_CALL SetCommTimeout(acgreader::Handle comm, int32_t milliseconds);
int32_t ACG_READER_CALL SetCommProtocol(acgreader::Handle comm, uint8_t protocol);
uint8_t ACG_READER_CALL GetCommProtocol(acgreader::Handle comm);
int32_t ACG_READER_CALL GetCommBaudRate(acgreader::Handle comm);
int32_t ACG_READER_CALL GetCommTimeout(acgreader::Handle comm);
char* ACG_READER_CALL DetectReader(acgreader::Handle comm, char* buffer); // of 256
acgreader::Handle ACG_READER_CALL OpenReader(acgreader::Handle comm, uint8_t id, int32_t zero);
char* ACG_READER_CALL GetReaderType(acgreader::Handle reader, char* buffer); // of 100
char* ACG_READER_CALL GetDeviceID(acgreader::Handle reader, char* buffer);   // of 20
char* ACG_READER_CALL SendCommandGetData(acgreader::Handle reader, const char* command, const char* data,
                                         char* buffer); // of 512
int32_t ACG_READER_CALL CloseReader(acgreader::Handle reader);
int32_t ACG_READER_CALL CloseComm(acgreader::Handle comm);

} // extern "C"

/// The list of the functions, one a line: CMake makes the lists of exported names of it.
// clang-format off
#define ACG_READER_FUNCTIONS(X) \
    X(OpenComm) \
    X(SetCommTimeout) \
    X(SetCommProtocol) \
    X(GetCommProtocol) \
    X(GetCommBaudRate) \
    X(GetCommTimeout) \
    X(DetectReader) \
    X(OpenReader) \
    X(GetReaderType) \
    X(GetDeviceID) \
    X(SendCommandGetData) \
    X(CloseReader) \
    X(CloseComm)
// clang-format on

namespace acgreader
{

#define ACG_NAME(name) name,
enum class Function {
    ACG_READER_FUNCTIONS(ACG_NAME)
};
#undef ACG_NAME

#define ACG_TEXT(name) #name,
/// By Function: the names under which the library exports them.
inline constexpr const char* FunctionNames[] = {ACG_READER_FUNCTIONS(ACG_TEXT)};
#undef ACG_TEXT
inline constexpr int FunctionCount = sizeof FunctionNames / sizeof *FunctionNames;

[[nodiscard]] constexpr const char* NameOf(Function function)
{
    return FunctionNames[static_cast<int>(function)];
}

template <Function>
struct Declared;
#define ACG_DECLARED(name)                                                                                   \
    template <>                                                                                              \
    struct Declared<Function::name> {                                                                        \
        using Type = decltype(&::name);                                                                      \
    };
ACG_READER_FUNCTIONS(ACG_DECLARED)
#undef ACG_DECLARED

/// The type of a pointer to the function.
template <Function function>
using Pointer = typename Declared<function>::Type;

} // namespace acgreader
