// Text: the program's own is UTF-8, the class's wide.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace acg::tool
{

/// Throws UsageError for text that isn't UTF-8.
[[nodiscard]] std::wstring ToWide(std::string_view Text);
[[nodiscard]] std::string ToUtf8(std::wstring_view Text);
[[nodiscard]] std::filesystem::path ToPath(std::string_view Text);

/// Text from outside as one line of UTF-8: control characters, and bytes that aren't UTF-8, as "\x1b".
[[nodiscard]] std::string Printable(std::string_view Text);

/// Text from the command line with stars for whatever may be a key: 10 or more hexadecimal digits, with
/// blanks, colons or hyphens between them, or in one word with a slip of the finger.
[[nodiscard]] std::string MaskKeys(std::string_view Text);

/// The text, broken at blanks so that no line passes column 80; lines after the first begin at column Indent,
/// as the first one is to do.
[[nodiscard]] std::string Wrap(std::string_view Text, size_t Indent);

/// As printf, without the conversions that Windows lacks, such as z.
[[gnu::format(printf, 1, 2)]] [[nodiscard]] std::string Format(const char* Pattern, ...);

/// The number that the whole text is in decimal digits, with a minus where Least is negative; throws
/// UsageError with What where it isn't one from Least to Most.
[[nodiscard]] int32_t ParseNumber(std::string_view Text, int32_t Least, int32_t Most, std::string_view What);

} // namespace acg::tool
