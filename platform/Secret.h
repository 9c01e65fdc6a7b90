// Text that may hold a key of a card.
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

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

/// Gives a text that may hold a key room for that many characters. Memory that is too small is wiped.
void MakeRoom(std::wstring& Text, std::size_t Room);

/// Puts a text in place of one that may hold a key.
void Replace(std::wstring& Text, std::wstring_view By, std::size_t Room = 0);

/// Text that may hold a key: whatever it held is wiped before its memory is given up. It isn't copied, and
/// grows only by being appended to.
template <class Char>
class Secret
{
public:
    using View = std::basic_string_view<Char>;
    using Text = std::basic_string<Char>;

    Secret() = default;
    /// A copy of a literal, a string or a view. Not explicit, so that a host gives a key as it has it.
    template <std::convertible_to<View> Given>
    Secret(const Given& Characters) : m_text(View(Characters))
    {
    }
    /// Takes a text over and leaves nothing of it behind.
    Secret(Text&& Characters) { *this = std::move(Characters); }
    ~Secret() { Wipe(m_text); }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;

    /// Takes the text over and leaves nothing of it behind.
    Secret& operator=(Text&& Characters)
    {
        m_text.swap(Characters);
        Wipe(Characters);
        return *this;
    }

    operator View() const { return m_text; }
    [[nodiscard]] View Characters() const { return m_text; }

    Secret& operator+=(View Characters)
    {
        Reserve(m_text.size() + Characters.size());
        m_text += Characters;
        return *this;
    }

    /// Room for Count characters in all.
    Secret& Reserve(std::size_t Count)
    {
        if (Count > m_text.capacity()) {
            Text larger;
            larger.reserve(Count);
            larger = m_text;
            m_text.swap(larger);
            Wipe(larger);
        }
        return *this;
    }

    /// The text itself, for operations that change a text in place. They must not outgrow its room.
    [[nodiscard]] Text& InPlace() { return m_text; }

    /// Empties it; its memory is wiped when it is given up.
    void Clear() { m_text.clear(); }

private:
    Text m_text;
};

using SecretText = Secret<wchar_t>;
using SecretAnsi = Secret<char>;

} // namespace acg
