// Masks keys in the texts of a reader command: what isn't known to be free of keys is masked.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace session
{

/// From Begin up to, and without, End. May end past the end of the text.
struct Part {
    size_t Begin = 0;
    size_t End = 0;
};

/// The parts of a text that can't be a key, and are shown; all else is masked.
using Parts = std::array<Part, 2>;
inline constexpr Parts Everything = {Part{0, std::string_view::npos}};

[[nodiscard]] constexpr bool IsPrintable(char character)
{
    return character >= ' ' && character <= '~';
}

/// A command that isn't known is shown if it is printable ASCII with fewer than 6 hexadecimal digits, half a
/// key, in a row; other characters than letters don't end a row.
[[nodiscard]] Parts ShownOfCommand(std::string_view command);

/// Of a login the sector and the type of the key; of a block its number, its contents if it isn't a trailer,
/// and the access bits and the user byte if it is. Nothing of an unknown command's data, of data that isn't
/// what the command takes, and of contents with the access bits of a trailer in another place than a
/// trailer's.
[[nodiscard]] Parts ShownOfData(std::string_view command, std::string_view data);

/// A text up to its first NUL, that included: what follows may be left from an earlier reply.
[[nodiscard]] Part UpToNul(std::string_view text);

/// A reply that can't hold a key up to its first NUL. Of a trailer the access bits, the user byte and the end
/// of the line; another reply to it with fewer than 6 hexadecimal digits in a row. Of the reply to a login or
/// to what ShownOfData shows nothing of: all, if it is printable with fewer than 12 hexadecimal digits.
[[nodiscard]] Parts ShownOfReply(std::string_view command, std::string_view data, std::string_view reply);

} // namespace session
