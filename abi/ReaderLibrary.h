// The reader library's side of its interface, which docs/reader-library.md describes: what plays the library
// derives from ReaderLibrary, and the thirteen exported functions call it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>

namespace exports
{

struct CommSettings {
    int32_t BaudRate = 0;
    uint8_t Protocol = 0; ///< 0 ASCII, 1 binary
    uint8_t Reserved[3] = {};
};
static_assert(sizeof(CommSettings) == 8);

/// The thirteen functions. Each answers here as it does for a handle that isn't open, which is also what the
/// host gets if an override throws.
///
/// A null text arrives as an empty one. A buffer is NULs, followed by one more, and empty if the host has
/// passed none; nothing has to be written into it.
class ReaderLibrary
{
public:
    using Handle = uint32_t; ///< 0 is none
    /// Ended by a NUL.
    struct Text : std::string_view {
        Text(const char* CText) : std::string_view(CText) {}
        Text(const std::string& Other) : std::string_view(Other) {}
        [[nodiscard]] const char* CText() const { return data(); }
    };
    using Buffer = std::span<char>;

    ReaderLibrary() = default;
    virtual ~ReaderLibrary() = default;
    ReaderLibrary(const ReaderLibrary&) = delete;
    ReaderLibrary& operator=(const ReaderLibrary&) = delete;

    virtual Handle OpenComm(Text /*Device*/, uint8_t /*Autodetect*/, CommSettings& /*Settings*/) { return 0; }
    virtual int32_t SetCommTimeout(Handle /*Comm*/, int32_t /*Timeout*/) { return 0; }
    virtual int32_t SetCommProtocol(Handle /*Comm*/, uint8_t /*Protocol*/) { return 0; }
    virtual uint8_t GetCommProtocol(Handle /*Comm*/) { return 0; }
    virtual int32_t GetCommBaudRate(Handle /*Comm*/) { return 0; }
    virtual int32_t GetCommTimeout(Handle /*Comm*/) { return 0; }
    virtual std::string DetectReader(Handle /*Comm*/, Buffer) { return {}; }
    virtual Handle OpenReader(Handle /*Comm*/, uint8_t /*Id*/, int32_t /*Third*/) { return 0; }
    virtual std::string GetReaderType(Handle /*Reader*/, Buffer) { return {}; }
    virtual std::string GetDeviceID(Handle /*Reader*/, Buffer) { return {}; }
    virtual std::string SendCommandGetData(Handle /*Reader*/, Text /*Command*/, Text /*Data*/, Buffer)
    {
        return {'?', '\0'};
    }
    virtual int32_t CloseReader(Handle /*Reader*/) { return 0; }
    virtual int32_t CloseComm(Handle /*Comm*/) { return 0; }
};

/// Writes one line on the standard error, its control characters as question marks. For what the interface
/// has no result for; no key may be in it.
inline void Report(std::string Line)
{
    std::ranges::replace_if(
        Line, [](unsigned char character) { return character < ' '; }, '?');
    static_cast<void>(std::fprintf(stderr, "ACGReader330: %s\n", Line.c_str()));
}

/// The object that the exported functions call. Whoever plays the library defines it.
[[nodiscard]] ReaderLibrary& TheLibrary();

/// The exported function of that name, for a player in the process of its host; null if there is none.
[[nodiscard]] auto FindFunction(std::string_view Name) -> void (*)();

} // namespace exports
