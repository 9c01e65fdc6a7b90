// The reader's status letters: a reply of one of them, followed by a NUL, is a code in place of data.
#pragma once

#include <string_view>

namespace acg
{

inline constexpr wchar_t StatusNoCard = L'N';
inline constexpr wchar_t StatusAuthenticationFailed = L'X';
inline constexpr wchar_t StatusUnknownCommand = L'?';
inline constexpr wchar_t StatusCollision = L'C';
inline constexpr wchar_t StatusCardRefused = L'F';
inline constexpr wchar_t StatusNoValueBlock = L'I';
inline constexpr wchar_t StatusOutOfOrder = L'O';
inline constexpr wchar_t StatusOutOfRange = L'R';
inline constexpr wchar_t StatusLoggedIn = L'L';

/// True if a code that the reader gave is that letter and nothing else.
[[nodiscard]] constexpr bool IsStatus(std::wstring_view RetCode, wchar_t Letter)
{
    return RetCode == std::wstring_view(&Letter, 1);
}

} // namespace acg
