// The reader vendor's library ACGReader330. docs/reader-library.md describes its binary interface.
#pragma once

#include "acg/platform/Library.h"
#include "acg/reader/Failure.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#ifdef _WIN32
#define ACG_READER_CALL __stdcall
#else
#define ACG_READER_CALL
#endif

namespace acg
{

class ByteString;

/// The functions of the library that are called.
enum class ReaderFunction {
    OpenComm,
    SetCommTimeout,
    SetCommProtocol,
    GetCommProtocol,
    GetCommBaudRate,
    GetCommTimeout,
    DetectReader,
    OpenReader,
    GetReaderType,
    GetDeviceID,
    SendCommandGetData,
    CloseReader,
    CloseComm,
};
inline constexpr int ReaderFunctionCount = static_cast<int>(ReaderFunction::CloseComm) + 1;

/// The name under which the library exports the function.
[[nodiscard]] const char* Name(ReaderFunction Function);

/// Passed to OpenComm by reference. What the library writes into it isn't read.
struct CommSettings {
    int32_t BaudRate = 0;
    uint8_t Protocol = 0; ///< 0 ASCII, 1 binary
    uint8_t Reserved[3] = {};
};
static_assert(sizeof(CommSettings) == 8);

/// Of a communication link, as the library returns it.
enum class CommHandle : uint32_t {
    None = 0
};
/// Of an opened reader.
enum class ReaderHandle : uint32_t {
    None = 0
};

/// Finds a function of the library; called at each use of one.
using EntryPointLookUp = std::function<EntryPoint(ReaderFunction)>;

/// The look-up in the library ACGReader330 of this process. It caches what it has found: a loaded library
/// stays loaded.
[[nodiscard]] EntryPoint FindInLibrary(ReaderFunction Function);

/// The thirteen functions, bound by name at run time.
///
/// Each operation returns the failure of the call as such: 53 where the library can't be loaded, 453 where it
/// lacks the function. Then no result is assigned, and a reply is empty. The reader's own answer is in the
/// result.
class ReaderDLL
{
public:
    /// The library ACGReader330 of this process.
    ReaderDLL();
    explicit ReaderDLL(EntryPointLookUp LookUp);

    /// Comm: None where the link couldn't be opened. Autodetect: 0 disabled, 1 normal, 2 fast.
    Failure OpenComm(std::wstring_view Device, uint8_t Autodetect, CommSettings& Settings,
                     CommHandle& Comm) const;
    /// Timeout in milliseconds.
    Failure SetCommTimeout(CommHandle Comm, int32_t Timeout) const;
    /// Protocol: 0 ASCII, 1 binary.
    Failure SetCommProtocol(CommHandle Comm, uint8_t Protocol) const;
    Failure GetCommProtocol(CommHandle Comm, uint8_t& Protocol) const;
    Failure GetCommBaudRate(CommHandle Comm, int32_t& BaudRate) const;
    Failure GetCommTimeout(CommHandle Comm, int32_t& Timeout) const;
    /// Readers: one byte for each reader found, its id, as the library returned it.
    Failure DetectReader(CommHandle Comm, std::string& Readers) const;
    /// Reader: None where the reader couldn't be opened.
    Failure OpenReader(CommHandle Comm, uint8_t ReaderId, ReaderHandle& Reader) const;
    /// Type: up to its first NUL.
    Failure GetReaderType(ReaderHandle Reader, std::wstring& Type) const;
    /// Id: up to its first NUL.
    Failure GetDeviceID(ReaderHandle Reader, std::wstring& Id) const;
    /// Command and Data are ASCII or ANSI; Data may hold a key. Reply: all of it, including what follows
    /// a NUL.
    Failure SendCommandGetData(ReaderHandle Reader, const char* Command, const char* Data, ByteString& Reply);
    Failure CloseReader(ReaderHandle Reader) const;
    Failure CloseComm(CommHandle Comm) const;

private:
    template <class Result, class... Arguments>
    Failure Call(ReaderFunction Function, Result& result, Arguments... arguments) const;
    template <class... Arguments>
    Failure CallForText(ReaderFunction Function, std::wstring& Text, Arguments... arguments) const;

    EntryPointLookUp m_lookUp;
    /// For the library to work in: 512 NUL characters and one more. They are NUL again after each call, as
    /// they may have been a key.
    char m_replyBuffer[512 + 1] = {};
};

} // namespace acg
