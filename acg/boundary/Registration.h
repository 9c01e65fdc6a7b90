// Registration of the component with the system.
#pragma once

#include <windows.h>

namespace acg
{

// The names by which hosts create the classes: the library's name and the class's.
inline constexpr wchar_t EncoderName[] = L"ACG_MultiISO_TV.Encoder";
inline constexpr wchar_t ErrorName[] = L"ACG_MultiISO_TV.CError";

/// Registers the classes, and the type library with its interfaces. If it fails, nothing stays
/// registered.
HRESULT Register() noexcept;

/// Removes all of that, unless it is the registration of another file, in another folder, that exists. It
/// doesn't fail if there is nothing to remove.
HRESULT Unregister() noexcept;

} // namespace acg
