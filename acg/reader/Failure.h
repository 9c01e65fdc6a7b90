// A failure inside the component: a value that the caller tests on the next line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace acg
{

/// A text that is a literal, so it outlives everything that refers to it.
class LiteralText
{
public:
    constexpr LiteralText() = default;
    template <size_t Size>
    consteval LiteralText(const wchar_t (&literal)[Size]) : m_text(literal, Size - 1)
    {
    }
    constexpr operator std::wstring_view() const { return m_text; }

private:
    std::wstring_view m_text;
};

/// Why an operation failed; by default it didn't.
struct [[nodiscard]] Failure {
    int32_t Number = 0;       ///< 0 for none; below 0 the component's own; above 0 a call failure
    LiteralText Description;  ///< empty for none
    int32_t LastDllError = 0; ///< the system's error code of a call failure, else 0
    wchar_t Letter = L'\0';   ///< what the reader answered, as a rule a status letter; NUL for nothing

    explicit operator bool() const { return Number != 0; }
};

// The reader's status letters that have a meaning to the component; any other is a refusal.
inline constexpr wchar_t StatusNoCard = L'N';
inline constexpr wchar_t StatusAuthenticationFailed = L'X';
inline constexpr wchar_t StatusLoggedIn = L'L';

} // namespace acg
