// Text that may hold a key of a card: its memory is wiped before it is released.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace acg
{

/// Fills memory with zeros, also where nothing reads it afterwards.
void Wipe(void* memory, std::size_t bytes);

/// Wipes the whole capacity of a text, characters that were cut off included, and empties it.
template <class Char>
void Wipe(std::basic_string<Char>& Text)
{
    Text.resize(Text.capacity());
    Wipe(Text.data(), Text.size() * sizeof(Char));
    Text.clear();
}

/// Reserves room for that many characters. The former memory is wiped.
void MakeRoom(std::wstring& Text, std::size_t room);

/// Assigns a text. Where that needs new memory, the former is wiped.
void Replace(std::wstring& Text, std::wstring_view by);

/// A text of the component's own, wiped at its end. MakeRoom before it grows: std::basic_string wouldn't wipe
/// what it leaves.
template <class Char>
struct Secret {
    std::basic_string<Char> Text;

    Secret() = default;
    explicit Secret(std::basic_string<Char>&& own)
    {
        Text.swap(own);
        Wipe(own);
    }
    ~Secret() { Wipe(Text); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
};

} // namespace acg
