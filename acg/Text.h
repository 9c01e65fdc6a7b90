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

/// As printf, without the conversions that Windows lacks, such as z.
[[gnu::format(printf, 1, 2)]] [[nodiscard]] std::string Format(const char* Pattern, ...);

/// The number that the whole text is in decimal digits, with a minus where Least is negative; throws
/// UsageError with What where it isn't one from Least to Most.
[[nodiscard]] int32_t ParseNumber(std::string_view Text, int32_t Least, int32_t Most, std::string_view What);

} // namespace acg::tool
