// The language of the dialogs, and what their texts have in common.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace acg
{

/// A text in both languages.
struct Translated {
    const wchar_t* English;
    const wchar_t* French;
};

[[nodiscard]] constexpr const wchar_t* In(bool french, const Translated& text)
{
    return french ? text.French : text.English;
}

/// True for "francais", in any mix of upper and lower case, and for nothing else. Every other text is
/// English.
[[nodiscard]] bool IsFrench(std::wstring_view language);

/// Replaces %1, %2 and so on by the values: each at all its occurrences, in that order, in the result of the
/// replacement before.
[[nodiscard]] std::wstring Fill(std::wstring text, std::initializer_list<std::wstring_view> values);

} // namespace acg
