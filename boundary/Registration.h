// Making the component known to the system.
#pragma once

#include <windows.h>

namespace acg
{

// The names by which hosts create the classes: the library's name and the class's.
inline constexpr wchar_t EncoderName[] = L"ACG_MultiISO_TV.Encoder";
inline constexpr wchar_t ErrorName[] = L"ACG_MultiISO_TV.CError";

/// Makes the classes known, and the type library with its interfaces. Where it fails, nothing
/// stays registered.
HRESULT Register() noexcept;

/// Takes all of that back. What isn't there is no failure.
HRESULT Unregister() noexcept;

} // namespace acg
