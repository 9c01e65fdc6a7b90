// Where a command's keys come from. A key is never part of a message.
#pragma once

#include "tool/Card.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace acg::tool
{

/// How the user gives a key.
struct KeyOptions {
    std::string Text; ///< --key; empty: not given
    std::string File; ///< --key-file
    bool AsB = false; ///< --as-b
};

/// 12 hexadecimal digits in either case, blanks around them allowed. Throws UsageError, whose text calls the
/// key `what`.
[[nodiscard]] Key ParseKey(std::string_view text, std::string_view what);

/// The key that an option has, else the variable; nothing without both. Throws UsageError if it isn't a key.
[[nodiscard]] std::optional<Key> KeyFromOption(const std::string& text, const char* option,
                                               const char* variable);

/// From --key, else the first key of --key-file, else the variable ACG_KEY. Throws UsageError if there is
/// none, or it isn't a key.
[[nodiscard]] LoginKey ReadLoginKey(const KeyOptions& options);

struct NamedKey {
    Key Bytes;
    std::string Name; ///< "the key", or "key 2 of the file", with the comment in its line if it has one
};
using KeyRing = std::vector<NamedKey>;

/// The keys of a file, one a line, with blanks and tabs around them; "#" begins a comment. Throws UsageError
/// if the file can't be read, isn't UTF-8, or has no key or a line that isn't one.
[[nodiscard]] KeyRing ReadKeys(const std::string& file);

/// All keys of --key-file, else the one of --key or of the variable ACG_KEY, else FFFFFFFFFFFF.
[[nodiscard]] KeyRing ReadKeyRing(const KeyOptions& options);

} // namespace acg::tool
