#include "acg/reader/CommandData.h"

#include "acg/platform/AnsiText.h"
#include "acg/platform/HexText.h"
#include "acg/platform/Secret.h"
#include "acg/platform/TextCase.h"

#include <algorithm>

namespace acg
{

CommandData::~CommandData()
{
    if (m_size > 0) {
        Wipe(m_text, m_size);
    }
}

char* CommandData::Grow(size_t count)
{
    const size_t before = m_size;
    if (count >= m_room - m_size) {
        const size_t room = m_size + count + 1;
        auto larger = std::make_unique<char[]>(room);
        std::copy_n(m_text, m_size, larger.get());
        Wipe(m_text, m_size);
        m_larger = std::move(larger);
        m_text = m_larger.get();
        m_room = room;
    }
    m_size += count;
    m_text[m_size] = '\0';
    return m_text + before;
}

CommandData& CommandData::AddByte(int32_t value)
{
    const auto byte = static_cast<uint8_t>(value);
    char* const digits = Grow(2);
    digits[0] = HexDigits[byte >> 4];
    digits[1] = HexDigits[byte & 0x0F];
    return *this;
}

CommandData& CommandData::AddNumber(int32_t value)
{
    return AddByte(value >> 24).AddByte(value >> 16).AddByte(value >> 8).AddByte(value);
}

CommandData& CommandData::AddText(std::wstring_view Text)
{
    if (IsAscii(Text)) { // as each key that a card can have
        std::ranges::transform(Text, Grow(Text.size()),
                               [](wchar_t letter) { return AsciiToUpper(static_cast<char>(letter)); });
        return *this;
    }
    Secret<wchar_t> upper{std::wstring(Text)};
    MakeUpper(upper.Text);
    const Secret<char> ansi{ToAnsi(upper.Text)};
    std::ranges::copy(ansi.Text, Grow(ansi.Text.size()));
    return *this;
}

} // namespace acg
