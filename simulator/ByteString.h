// The text result of a reader library's function.
#pragma once

#include <cstdint>
#include <string_view>

#ifdef _WIN32
#include <windows.h>

#include <oleauto.h>
#else
#include <cstdlib>
#include <cstring>
#endif

namespace simulator
{

/// The caller owns the byte string and frees it. Null, which is empty text too, if there is no memory.
inline char* NewByteString(std::string_view Text) noexcept
{
    const auto length = static_cast<uint32_t>(Text.size());
#ifdef _WIN32
    return reinterpret_cast<char*>(SysAllocStringByteLen(Text.data(), length));
#else
    // The length, the bytes, and a NUL that isn't counted.
    auto* const memory = static_cast<char*>(std::malloc(sizeof(length) + length + 1));
    if (memory == nullptr) {
        return nullptr;
    }
    std::memcpy(memory, &length, sizeof(length));
    std::memcpy(memory + sizeof(length), Text.data(), length);
    memory[sizeof(length) + length] = '\0';
    return memory + sizeof(length);
#endif
}

} // namespace simulator
