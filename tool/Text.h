// Text: the program's own is UTF-8, the class's wide.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace acg::tool
{

/// Throws UsageError for text that isn't UTF-8.
[[nodiscard]] std::wstring ToWide(std::string_view text);
[[nodiscard]] std::string ToUtf8(std::wstring_view text);
[[nodiscard]] std::filesystem::path ToPath(std::string_view text);

/// The file's first bytes, so many at most; nothing if it can't be read.
[[nodiscard]] std::optional<std::string> ReadFile(const std::filesystem::path& path, size_t most);

inline constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF"; ///< what a text file may begin with
[[nodiscard]] bool IsUtf8(std::string_view text);

/// All bytes of a file of text. Throws UsageError if it can't be read, has `most` bytes or more (a file of
/// the wrong kind may have no end) and so is too long for a `kind`, or is UTF-16.
[[nodiscard]] std::string ReadTextFile(const std::string& name, std::string_view kind, size_t most);

/// Text from outside as one line of UTF-8: control characters, and bytes that aren't UTF-8, as "\x1b".
[[nodiscard]] std::string Printable(std::string_view text);

/// Text from the command line with stars for whatever may be a key: 10 or more hexadecimal digits, with
/// blanks, colons or hyphens between them, or in one word with a slip of the finger.
[[nodiscard]] std::string MaskKeys(std::string_view text);

/// The parts between the separators, one more than there are separators.
[[nodiscard]] std::vector<std::string_view> Split(std::string_view text, char separator);

/// The text, broken at blanks so that no line passes column 80; lines after the first begin at column indent,
/// as the first one is to do.
[[nodiscard]] std::string Wrap(std::string_view text, size_t indent);

/// An environment variable; nothing if it isn't set, or is empty.
[[nodiscard]] std::optional<std::string> Variable(const char* name);

/// As printf, without the conversions that Windows lacks, such as z.
[[gnu::format(printf, 1, 2)]] [[nodiscard]] std::string Format(const char* pattern, ...);

/// The text as a decimal number. Throws UsageError{problem} unless it is one from least to most.
[[nodiscard]] int32_t ParseNumber(std::string_view text, int32_t least, int32_t most,
                                  std::string_view problem);

/// The first and the last number of "4-6", or twice that of "4". Throws as parse does, and UsageError if it
/// ends before it begins.
[[nodiscard]] std::pair<int32_t, int32_t> ParseRange(std::string_view text,
                                                     int32_t (*parse)(std::string_view));

} // namespace acg::tool
