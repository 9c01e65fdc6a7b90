#include "acg/platform/Process.h"

#include <cstring>
#include <windows.h>

namespace acg
{

SystemPath EnvironmentVariable(const char* name)
{
    const std::wstring wideName(name, name + std::strlen(name));
    constexpr DWORD LongestVariable = 32767;
    std::wstring value(LongestVariable, L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), LongestVariable));
    return value;
}

} // namespace acg
