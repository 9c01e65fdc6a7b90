#include "platform/AnsiText.h"

#include "platform/Secret.h"

#include <algorithm>

namespace acg
{

void ReplaceByAnsi(std::wstring& Text, std::string_view By, size_t Room, size_t Most)
{
    const std::string_view ascii = By.substr(0, std::min(By.find('\0'), Most));
    if (IsAscii(ascii)) {
        MakeRoom(Text, std::max(Room, ascii.size()));
        Text.resize(ascii.size());
        std::ranges::copy(ascii, Text.begin());
        return;
    }
    const SecretText wide(FromAnsi(By)); // whole, as a code page may make one character of several bytes
    const std::wstring_view text = wide;
    Replace(Text, text.substr(0, std::min(text.find(L'\0'), Most)), Room);
}

} // namespace acg
