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

void MakeRoom(std::wstring& Text, std::size_t room)
{
    if (Text.capacity() < room) {
        std::wstring roomy;
        roomy.reserve(room);
        roomy = Text;
        Text.swap(roomy);
        Wipe(roomy);
    }
}

void Replace(std::wstring& Text, std::wstring_view by)
{
    MakeRoom(Text, by.size());
    Text = by;
}

} // namespace acg
