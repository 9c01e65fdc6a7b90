// Text that may hold a key of a card: its memory is wiped before it is given up.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace acg
{

/// Fills memory with zeros, also where nothing reads it afterwards.
void Wipe(void* Memory, std::size_t Bytes);

/// Wipes the whole of a text's memory, characters that were cut off included, and empties it.
template <class Char>
void Wipe(std::basic_string<Char>& Text)
{
    Text.resize(Text.capacity());
    Wipe(Text.data(), Text.size() * sizeof(Char));
    Text.clear();
}

/// Gives a text room for that many characters. Memory that is too small is wiped.
void MakeRoom(std::wstring& Text, std::size_t Room);

/// Puts a text in place of another. Memory that is too small is wiped.
void Replace(std::wstring& Text, std::wstring_view By);

/// The component's own text. Whoever lets it grow makes room first.
template <class Char>
struct Secret {
    std::basic_string<Char> Text;

    Secret() = default;
    explicit Secret(std::basic_string<Char>&& Own)
    {
        Text.swap(Own);
        Wipe(Own);
    }
    ~Secret() { Wipe(Text); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
};

} // namespace acg
