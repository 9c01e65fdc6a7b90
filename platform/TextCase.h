// Case changes that no user's locale decides.
#pragma once

#include <string>

namespace acg
{

/// The letters of ASCII and of Windows-1252 change their case, each for one other letter; every other
/// character stays as it is.
void MakeUpper(std::wstring& Text);
[[nodiscard]] std::wstring ToLower(std::wstring Text);

} // namespace acg
