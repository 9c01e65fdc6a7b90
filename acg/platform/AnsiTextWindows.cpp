#include "acg/platform/AnsiText.h"

#include <windows.h>

#include <oleauto.h>

namespace acg
{

namespace
{

/// One of the system's two conversions: fills the buffer, or only counts if there is none.
int Convert(std::wstring_view text, char* buffer, int size)
{
    // A code page that has every character accepts neither the flag nor the "?".
    const bool hasAll = GetACP() == CP_UTF8;
    return WideCharToMultiByte(CP_ACP, hasAll ? 0 : WC_NO_BEST_FIT_CHARS, text.data(),
                               static_cast<int>(text.size()), buffer, size, hasAll ? nullptr : "?", nullptr);
}

int Convert(std::string_view text, wchar_t* buffer, int size)
{
    return MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), buffer, size);
}

template <class To, class From>
To Converted(From text)
{
    To converted(static_cast<size_t>(Convert(text, nullptr, 0)), '\0');
    Convert(text, converted.data(), static_cast<int>(converted.size()));
    return converted;
}

} // namespace

std::string ToAnsi(std::wstring_view text)
{
    return Converted<std::string>(text);
}

std::wstring FromAnsi(std::string_view text)
{
    return Converted<std::wstring>(text);
}

SystemPath PathFromAnsi(std::string_view text)
{
    return FromAnsi(text);
}

void ByteString::Free(char* bytes)
{
    SysFreeString(reinterpret_cast<BSTR>(bytes));
}

} // namespace acg
