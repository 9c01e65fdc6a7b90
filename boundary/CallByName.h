// A call by name, as IDispatch::Invoke is asked for it.
#pragma once

#include <oaidl.h>

namespace acg
{

/// Calls a member of an object through the description of its interface. The type library's own call takes an
/// argument of the declared type, or a reference to a variable of that type; a script gives references to
/// variants. So any other argument is first converted to the declared type, but for one that is left out, and
/// BX, which is a variant. A script's variable gets the value of an in/out argument back when the call has
/// come to its end, whatever result the operation gives.
///
/// DISP_E_TYPEMISMATCH: an argument that doesn't convert; BadArgument is its index, and nothing was called.
HRESULT CallByName(ITypeInfo& Interface, void* Object, DISPID Member, WORD Flags, const DISPPARAMS* Arguments,
                   VARIANT* Result, EXCEPINFO* Exception, UINT* BadArgument) noexcept;

} // namespace acg
