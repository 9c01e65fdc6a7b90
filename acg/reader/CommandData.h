// The data text of a reader command.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace acg
{

/// Built in 8-bit, piece by piece, where its parts are known. It may hold keys: it wipes itself, and
/// memory that it has outgrown.
class CommandData
{
public:
    CommandData() = default;
    ~CommandData();
    CommandData(const CommandData&) = delete;
    CommandData& operator=(const CommandData&) = delete;

    /// The low byte as two upper-case digits: 9 adds "09", 256 adds "00", -1 adds "FF".
    CommandData& AddByte(int32_t value);
    /// All 32 bits as eight upper-case digits, the most significant first: -1 adds "FFFFFFFF".
    CommandData& AddNumber(int32_t value);
    /// A key or digits, in upper case and ANSI, of any length.
    CommandData& AddText(std::wstring_view Text);

    [[nodiscard]] const char* Text() const { return m_text; }

private:
    /// Extends the text by uninitialized room, which the caller fills.
    char* Grow(size_t count);

    static constexpr size_t OwnRoom = 64; ///< a block with its number, or a login, and a NUL
    char m_own[OwnRoom] = {};
    std::unique_ptr<char[]> m_larger;
    char* m_text = m_own;
    size_t m_size = 0;
    size_t m_room = OwnRoom;
};

} // namespace acg
