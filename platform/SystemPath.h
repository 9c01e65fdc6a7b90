// A path as the system spells it.
#pragma once

#include <filesystem>

namespace acg
{

/// Wide on Windows.
using SystemPath = std::filesystem::path::string_type;

} // namespace acg
