// The reader's status letters: a reply of one of them, followed by a NUL, is a code in place of data. These
// have a meaning to the component; any other is a refusal.
#pragma once

namespace acg
{

inline constexpr wchar_t StatusNoCard = L'N';
inline constexpr wchar_t StatusAuthenticationFailed = L'X';
inline constexpr wchar_t StatusLoggedIn = L'L';

} // namespace acg
