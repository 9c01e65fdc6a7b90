#include "recorder/System.h"

#include <cstring>
#include <windows.h>

namespace recorder
{

const char* LibraryFileName()
{
    return "ACGReader330.dll";
}

std::filesystem::path PathVariable(const char* Name)
{
    const std::wstring wideName(Name, Name + std::strlen(Name));
    constexpr DWORD LongestVariable = 32767;
    std::wstring value(LongestVariable, L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), LongestVariable));
    return value;
}

uint32_t LastError()
{
    return ::GetLastError();
}

void SetLastError(uint32_t Error)
{
    ::SetLastError(Error);
}

} // namespace recorder
