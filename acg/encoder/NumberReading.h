// How a text is read as a number, and a number written as text.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace acg
{

/// What a text begins with.
struct NumberRead {
    int64_t Number = 0; ///< the nearest whole number, with exact halves rounded to even
    bool IsAll = false; ///< there is a number, and nothing after it; the command-line program refuses what
                        ///< is read in part
};

/// Reads a number from the start of the text, and stops at the first character that can't continue it; 0 if
/// nothing was read. Spaces, tabs and line feeds are skipped anywhere.
///
///     [sign] digits [. digits] [E|D [sign] digits]     -12.5  1 200  .5  1e3
///     &H hexadecimal digits      &O octal digits       &HFF   &o17      (never with a sign)
///
/// Letters count in either case. 2.5 becomes 2, 3.5 becomes 4. For a number beyond 32 bits the
/// result is some number beyond them.
[[nodiscard]] NumberRead ReadNumber(std::wstring_view text);

/// The same, and nothing if the number doesn't fit the field's type of at most 32 bits.
template <std::integral Field>
[[nodiscard]] std::optional<Field> ReadField(std::wstring_view text)
{
    const int64_t number = ReadNumber(text).Number;
    return std::in_range<Field>(number) ? std::optional(static_cast<Field>(number)) : std::nullopt;
}

/// The number in decimal digits, with a minus if it is negative.
[[nodiscard]] std::wstring DecimalText(int32_t number);

} // namespace acg
