#include "acg/platform/Secret.h"

#include <cstring>

namespace acg
{

void Wipe(void* Memory, std::size_t Bytes)
{
    std::memset(Memory, 0, Bytes);
    // As far as the compiler knows, this statement may read the memory, so the line before it can't be
    // optimized away.
    __asm__ volatile("" : : "r"(Memory) : "memory");
}

void MakeRoom(std::wstring& Text, std::size_t Room)
{
    if (Text.capacity() < Room) {
        std::wstring roomy;
        roomy.reserve(Room);
        roomy = Text;
        Text.swap(roomy);
        Wipe(roomy);
    }
}

void Replace(std::wstring& Text, std::wstring_view By)
{
    MakeRoom(Text, By.size());
    Text = By;
}

} // namespace acg
