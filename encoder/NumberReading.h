// How a text is read as a number.
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace acg
{

/// Reads a number from the start of the text, and stops at the first character that can't continue it; 0 if
/// nothing was read. Spaces, tabs and line feeds are skipped wherever they stand.
///
///     [sign] digits [. digits] [E|D [sign] digits]     -12.5  1 200  .5  1e3
///     &H hexadecimal digits      &O octal digits       &HFF   &o17      (never with a sign)
///
/// The letters count in either case.
[[nodiscard]] double ReadNumber(std::wstring_view Text);

/// The nearest whole number, a fraction of exactly one half to the even neighbour: 2.5 gives 2, 3.5 gives 4.
/// Nothing where it lies outside of the range, both ends included.
[[nodiscard]] std::optional<int32_t> ToWholeNumber(double Number, int32_t Lowest, int32_t Highest);

/// The same for the range of a field's type.
template <std::integral Field>
[[nodiscard]] std::optional<Field> ReadField(std::wstring_view Text)
{
    using Limits = std::numeric_limits<Field>;
    const std::optional<int32_t> whole = ToWholeNumber(ReadNumber(Text), Limits::min(), Limits::max());
    return whole ? std::optional(static_cast<Field>(*whole)) : std::nullopt;
}

} // namespace acg
