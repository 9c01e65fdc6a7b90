#include "acg/platform/AnsiText.h"

#include "acg/platform/Secret.h"

#include <algorithm>

namespace acg
{

void ReplaceByAnsi(std::wstring& Text, std::string_view by, size_t most)
{
    const std::string_view ascii = by.substr(0, std::min(by.find('\0'), most));
    if (IsAscii(ascii)) {
        MakeRoom(Text, ascii.size());
        Text.resize(ascii.size());
        std::ranges::copy(ascii, Text.begin());
        return;
    }
    const Secret<wchar_t> wide{FromAnsi(by)}; // whole, as a code page may make one character of several bytes
    const std::wstring_view text = wide.Text;
    Replace(Text, text.substr(0, std::min(text.find(L'\0'), most)));
}

} // namespace acg
