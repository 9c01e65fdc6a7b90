// The type library in the resources of this DLL.
#pragma once

#include <string>
#include <windows.h>

#include <oaidl.h>

namespace acg
{

/// The path of the DLL, or of the program, that this code is linked into.
std::wstring OwnPath();

/// The description of an interface or a class. The library is loaded when first asked.
HRESULT TypeInfoOf(REFGUID Id, ITypeInfo** Info) noexcept;

/// Lets go of the library, so that nothing of this DLL stays behind when it is unloaded.
void LetGoOfTypeLibrary() noexcept;

} // namespace acg
