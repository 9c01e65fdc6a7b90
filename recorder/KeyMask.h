// Where a key may be in the texts of a reader command. What isn't known to be free of keys counts as a key.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace recorder
{

/// From Begin up to, and without, End. May end behind the text.
struct Part {
    size_t Begin = 0;
    size_t End = 0;
};

/// What of a text is no key.
using Parts = std::array<Part, 2>;
inline constexpr Parts Everything = {Part{0, std::string_view::npos}};

/// A command that isn't known is shown where it has fewer hexadecimal digits than a key.
[[nodiscard]] Parts ShownOfCommand(std::string_view Command);

/// Of a login the sector and the type of the key; of a block its number, its contents if it isn't a trailer,
/// and the access bits and the user byte if it is. Data of another size than the command takes is shown up to
/// its first byte; that of an unknown command isn't shown.
[[nodiscard]] Parts ShownOfData(std::string_view Command, std::string_view Data);

/// A text up to its first NUL, that included: what follows may be left from an earlier reply.
[[nodiscard]] Part UpToNul(std::string_view Text);

/// A status letter always; of a trailer the access bits and the user byte; a reply that can't hold a key up
/// to its first NUL. Nothing else of the reply to a login, to an unknown command or to data of another size.
[[nodiscard]] Parts ShownOfReply(std::string_view Command, std::string_view Data, std::string_view Reply);

} // namespace recorder
