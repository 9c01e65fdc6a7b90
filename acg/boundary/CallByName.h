// A call by name: the work of IDispatch::Invoke.
#pragma once

#include "acg/boundary/TypeLibrary.h"

namespace acg
{

/// Calls a member of an object by the description of its interface. ITypeInfo::Invoke would do less: it
/// refuses a script's variable for every in/out argument with a type, and can't wipe the copies that it makes
/// of keys.
///
/// An argument is converted to the declared type, unless it has that type, or is a reference to a variable of
/// it; for an in/out argument also of another integer type of the same size. A script passes references to
/// variants: its variable receives the value of an in/out argument when the call has completed, whatever
/// result the operation returns. BX, which is a variant, is passed unchanged.
///
/// If an argument is refused, badArgument is its index, and nothing was called: DISP_E_TYPEMISMATCH and
/// DISP_E_OVERFLOW, DISP_E_PARAMNOTOPTIONAL, E_POINTER for a reference that leads nowhere,
/// DISP_E_PARAMNOTFOUND for a name that no parameter has.
HRESULT CallByName(const InterfaceDescription& description, void* object, DISPID id, LCID language,
                   WORD flags, const DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                   UINT* badArgument);

} // namespace acg
