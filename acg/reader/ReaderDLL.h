// The reader vendor's library ACGReader330. docs/reader-library.md describes its binary interface.
#pragma once

#include "acg/platform/Library.h"
#include "acg/reader/Failure.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace acgreader // whose header isn't installed
{
enum class Function;
struct CommSettings;
} // namespace acgreader

namespace acg
{

class ByteString;

/// The functions of the library, counted from 0.
using ReaderFunction = acgreader::Function;
extern const int ReaderFunctionCount;

/// Passed to OpenComm by reference. What the library writes into it isn't read.
using CommSettings = acgreader::CommSettings;

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
[[nodiscard]] EntryPoint FindInLibrary(ReaderFunction function);

/// The thirteen functions, bound by name at run time.
///
/// Each operation returns the failure of the call as such: 53 if the library can't be loaded, 453 if it
/// lacks the function. Then no result is assigned, and a reply is empty. The reader's own answer is in the
/// result.
class ReaderDLL
{
public:
    /// The library ACGReader330 of this process.
    ReaderDLL();
    explicit ReaderDLL(EntryPointLookUp lookUp);

    /// comm: None if the link couldn't be opened. autodetect: 0 disabled, 1 normal, 2 fast.
    Failure OpenComm(std::wstring_view device, uint8_t autodetect, CommSettings& settings,
                     CommHandle& comm) const;
    /// timeout in milliseconds.
    Failure SetCommTimeout(CommHandle comm, int32_t timeout) const;
    /// protocol: 0 ASCII, 1 binary.
    Failure SetCommProtocol(CommHandle comm, uint8_t protocol) const;
    Failure GetCommProtocol(CommHandle comm, uint8_t& protocol) const;
    Failure GetCommBaudRate(CommHandle comm, int32_t& baudRate) const;
    Failure GetCommTimeout(CommHandle comm, int32_t& timeout) const;
    /// readers: one byte for each reader found, its id, as the library returned it.
    Failure DetectReader(CommHandle comm, std::string& readers) const;
    /// reader: None if the reader couldn't be opened.
    Failure OpenReader(CommHandle comm, uint8_t readerId, ReaderHandle& reader) const;
    /// type: up to its first NUL.
    Failure GetReaderType(ReaderHandle reader, std::wstring& type) const;
    /// id: up to its first NUL.
    Failure GetDeviceID(ReaderHandle reader, std::wstring& id) const;
    /// command and data are ASCII or ANSI; data may hold a key. reply: all of it, including what follows
    /// a NUL.
    Failure SendCommandGetData(ReaderHandle reader, const char* command, const char* data, ByteString& reply);
    Failure CloseReader(ReaderHandle reader) const;
    Failure CloseComm(CommHandle comm) const;

private:
    template <ReaderFunction function, class Result, class... Arguments>
    Failure Call(Result&& result, Arguments... arguments) const; ///< a temporary result isn't wanted
    template <ReaderFunction function, class... Arguments>
    Failure CallForText(std::wstring& text, Arguments... arguments) const;

    EntryPointLookUp m_lookUp;
    /// For the library to work in: 512 NUL characters and one more. They are NUL again after each call, as
    /// they may have been a key.
    char m_replyBuffer[512 + 1] = {};
};

} // namespace acg
