#include "acg/platform/Secret.h"

#include <cstring>

namespace acg
{

void Wipe(void* memory, std::size_t bytes)
{
    std::memset(memory, 0, bytes);
    // As far as the compiler knows, this statement may read the memory, so the line before it can't be
    // optimized away.
    __asm__ volatile("" : : "r"(memory) : "memory");
}

void MakeRoom(std::wstring& text, std::size_t room)
{
    if (text.capacity() < room) {
        std::wstring roomy;
        roomy.reserve(room);
        roomy = text;
        text.swap(roomy);
        Wipe(roomy);
    }
}

void Replace(std::wstring& text, std::wstring_view replacement)
{
    MakeRoom(text, replacement.size());
    text = replacement;
}

} // namespace acg
