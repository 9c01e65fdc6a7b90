// A path as the system spells it, and in UTF-8.
#pragma once

#include <filesystem>
#include <string>

namespace acg
{

/// Wide on Windows.
using SystemPath = std::filesystem::path::string_type;

[[nodiscard]] inline std::string Utf8Of(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace acg
