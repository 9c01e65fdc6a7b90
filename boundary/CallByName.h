// A call by name, as IDispatch::Invoke is asked for it.
#pragma once

#include "boundary/TypeLibrary.h"

namespace acg
{

/// Calls a member of an object by the description of its interface. An argument is converted to the declared
/// type, unless it has that type, or is a reference to a variable of it. A script gives references to
/// variants: its variable gets the value of an in/out argument back when the call has come to its end,
/// whatever result the operation gives. BX, which is a variant, reaches the member as it is.
///
/// Where an argument is refused, BadArgument is its index, and nothing was called: DISP_E_TYPEMISMATCH and
/// DISP_E_OVERFLOW, DISP_E_PARAMNOTOPTIONAL, E_POINTER for a reference that leads nowhere.
HRESULT CallByName(const InterfaceDescription& Interface, void* Object, DISPID Id, LCID Language, WORD Flags,
                   const DISPPARAMS* Given, VARIANT* Result, EXCEPINFO* Exception, UINT* BadArgument);

} // namespace acg
