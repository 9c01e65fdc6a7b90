#include "platform/Secret.h"

#include <cstring>

namespace acg
{

void Wipe(void* Memory, std::size_t Bytes)
{
    std::memset(Memory, 0, Bytes);
    // A statement that may read the memory, for all that the compiler knows: so it can't leave the line
    // before it out.
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
