#include "acg/platform/AnsiText.h"

#include "acg/platform/Secret.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace acg
{

void ReplaceByAnsi(std::wstring& text, std::string_view ansi, size_t maxLength)
{
    const std::string_view ascii = ansi.substr(0, std::min(ansi.find('\0'), maxLength));
    if (IsAscii(ascii)) {
        MakeRoom(text, ascii.size());
        text.resize(ascii.size());
        std::ranges::copy(ascii, text.begin());
        return;
    }
    const Secret<wchar_t> wide{
        FromAnsi(ansi)}; // whole, as a code page may make one character of several bytes
    const std::wstring_view whole = wide.Text;
    Replace(text, whole.substr(0, std::min(whole.find(L'\0'), maxLength)));
}

ByteString::~ByteString()
{
    if (m_bytes != nullptr) {
        Wipe(m_bytes, Bytes().size());
        Free(m_bytes);
    }
}

std::string_view ByteString::Bytes() const
{
    uint32_t length = 0;
    if (m_bytes != nullptr) {
        std::memcpy(&length, m_bytes - sizeof length, sizeof length);
    }
    return {m_bytes, length};
}

} // namespace acg
