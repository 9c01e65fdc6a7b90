#include "acg/platform/AnsiText.h"

#include "acg/platform/Secret.h"

#include <algorithm>

namespace acg
{

void ReplaceByAnsi(std::wstring& Text, std::string_view By, size_t Most)
{
    const std::string_view ascii = By.substr(0, std::min(By.find('\0'), Most));
    if (IsAscii(ascii)) {
        MakeRoom(Text, ascii.size());
        Text.resize(ascii.size());
        std::ranges::copy(ascii, Text.begin());
        return;
    }
    const Secret<wchar_t> wide{FromAnsi(By)}; // whole, as a code page may make one character of several bytes
    const std::wstring_view text = wide.Text;
    Replace(Text, text.substr(0, std::min(text.find(L'\0'), Most)));
}

} // namespace acg
