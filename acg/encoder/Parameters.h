// The entries of the parameter text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace acg
{

/// Walks over the entries, blank ones too, by for (ParameterEntries entry(text); entry.Next();). The text
/// must outlive it.
///
/// If there is a CR LF anywhere in the text, the entries are joined by that alone, else by ";".
class ParameterEntries
{
public:
    explicit ParameterEntries(std::wstring_view text);

    /// Steps to the next entry, the first one to begin with. False: there is none.
    [[nodiscard]] bool Next();

    // Of the entry:
    std::wstring Key;                       ///< what precedes the first "=", in lower case, trimmed of blanks
    std::optional<std::wstring_view> Value; ///< what follows it; nothing if there is no "="

private:
    std::wstring_view m_separator;
    std::wstring_view m_rest;
};

} // namespace acg
