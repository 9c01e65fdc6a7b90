// The reader library's side of its interface: what plays the library derives from ReaderLibrary, and the
// exported functions call it.
#pragma once

#include "abi/ACGReader330.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

namespace acgreader
{

/// The thirteen functions. Each returns here what it does for a handle that isn't open, which is also what
/// the host gets if an override throws.
///
/// A null text arrives as an empty one. A buffer is NULs, followed by one more, and empty if the host has
/// passed none; nothing has to be written into it.
class ReaderLibrary
{
public:
    using Handle = acgreader::Handle;
    /// Ended by a NUL.
    struct Text : std::string_view {
        Text(const char* text) : std::string_view(text) {}
        Text(const std::string& text) : std::string_view(text) {}
    };
    using Buffer = std::span<char>;

    ReaderLibrary() = default;
    virtual ~ReaderLibrary() = default;
    ReaderLibrary(const ReaderLibrary&) = delete;
    ReaderLibrary& operator=(const ReaderLibrary&) = delete;

    virtual Handle OpenComm(Text /*device*/, uint8_t /*autodetect*/, CommSettings& /*settings*/) { return 0; }
    virtual int32_t SetCommTimeout(Handle /*comm*/, int32_t /*milliseconds*/) { return 0; }
    virtual int32_t SetCommProtocol(Handle /*comm*/, uint8_t /*protocol*/) { return 0; }
    virtual uint8_t GetCommProtocol(Handle /*comm*/) { return 0; }
    virtual int32_t GetCommBaudRate(Handle /*comm*/) { return 0; }
    virtual int32_t GetCommTimeout(Handle /*comm*/) { return 0; }
    virtual std::string DetectReader(Handle /*comm*/, Buffer) { return {}; }
    virtual Handle OpenReader(Handle /*comm*/, uint8_t /*id*/, int32_t /*zero*/) { return 0; }
    virtual std::string GetReaderType(Handle /*reader*/, Buffer) { return {}; }
    virtual std::string GetDeviceID(Handle /*reader*/, Buffer) { return {}; }
    virtual std::string SendCommandGetData(Handle /*reader*/, Text /*command*/, Text /*data*/, Buffer)
    {
        return {'?', '\0'};
    }
    virtual int32_t CloseReader(Handle /*reader*/) { return 0; }
    virtual int32_t CloseComm(Handle /*comm*/) { return 0; }
};

/// Writes one line on the standard error, its control characters as question marks. For what the interface
/// has no result for; no key may be in it.
inline void Report(std::string line)
{
    std::ranges::replace_if(
        line, [](unsigned char character) { return character < ' '; }, '?');
    static_cast<void>(std::fprintf(stderr, "ACGReader330: %s\n", line.c_str()));
}

/// The object that the exported functions call. Whoever plays the library defines it.
[[nodiscard]] ReaderLibrary& TheLibrary();

/// The exported function, for a player in the process of its host.
[[nodiscard]] auto FindFunction(Function function) -> void (*)();

} // namespace acgreader
