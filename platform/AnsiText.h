// 8-bit text: the system's ANSI code page, and the byte strings in which a reader library gives its texts.
#pragma once

#include <string>
#include <string_view>

namespace acg
{

/// ANSI is the system's code page on Windows and Windows-1252 elsewhere. A character that it lacks becomes
/// "?". Each conversion allocates its result once, so no copy of the text is left behind in freed memory.
[[nodiscard]] std::string ToAnsi(std::wstring_view Text);
[[nodiscard]] std::wstring FromAnsi(std::string_view Text);

/// Owner of a length-counted byte string: a pointer to its first byte, with the 32-bit length in bytes
/// directly before it. Windows: a BSTR made with SysAllocStringByteLen. Elsewhere: one malloc of
/// 4 + length + 1 bytes. A null pointer is empty text.
class ByteString
{
public:
    explicit ByteString(char* Bytes) : m_bytes(Bytes) {}
    /// Wipes the bytes, which may hold a key of the card, and frees them.
    ~ByteString();
    ByteString(const ByteString&) = delete;
    ByteString& operator=(const ByteString&) = delete;

    [[nodiscard]] std::string_view Bytes() const;

    /// A new byte string that the caller, or an owner made from it, frees; null if there is no memory.
    [[nodiscard]] static char* Make(std::string_view Bytes);

private:
    char* m_bytes;
};

} // namespace acg
