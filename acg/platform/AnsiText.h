// 8-bit text: the system's ANSI code page, and the byte strings in which a reader library returns its texts.
#pragma once

#include "acg/platform/SystemPath.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace acg
{

/// ANSI is the system's code page on Windows and Windows-1252 elsewhere. A character that it lacks becomes
/// "?". Each conversion allocates its result once, so no copy of the text is left in freed memory.
[[nodiscard]] std::string ToAnsi(std::wstring_view text);
[[nodiscard]] std::wstring FromAnsi(std::string_view text);

/// A path in the system's 8-bit text: ANSI on Windows, elsewhere any bytes.
[[nodiscard]] SystemPath PathFromAnsi(std::string_view text);

/// True for characters that are the same byte in every code page.
template <class Char>
[[nodiscard]] bool IsAscii(std::basic_string_view<Char> text)
{
    std::make_unsigned_t<Char> bits = 0;
    for (const Char character : text) {
        bits |= static_cast<std::make_unsigned_t<Char>>(character);
    }
    return bits < 0x80;
}

/// Replaces a text by one of the library, which ends at its first NUL and is cut to maxLength characters.
/// Both may hold a key.
void ReplaceByAnsi(std::wstring& text, std::string_view ansi, size_t maxLength = std::wstring_view::npos);

/// Owner of a length-counted byte string: a pointer to its first byte, with the 32-bit length in bytes
/// directly before it. Windows: a BSTR made with SysAllocStringByteLen. Elsewhere: one malloc of
/// 4 + length + 1 bytes. A null pointer is empty text.
class ByteString
{
public:
    explicit ByteString(char* bytes = nullptr) : m_bytes(bytes) {}
    ByteString(ByteString&& other) noexcept : m_bytes(std::exchange(other.m_bytes, nullptr)) {}
    ByteString& operator=(ByteString&& other) noexcept
    {
        std::swap(m_bytes, other.m_bytes);
        return *this;
    }
    ByteString(const ByteString&) = delete;
    ByteString& operator=(const ByteString&) = delete;
    /// Wipes the bytes, which may hold a key of the card, and frees them.
    ~ByteString();

    [[nodiscard]] std::string_view Bytes() const;

    /// Passes the ownership on.
    [[nodiscard]] char* Release() { return std::exchange(m_bytes, nullptr); }

private:
    static void Free(char* bytes); ///< by the system's means

    char* m_bytes;
};

} // namespace acg
