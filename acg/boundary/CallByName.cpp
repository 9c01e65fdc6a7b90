#include "acg/boundary/CallByName.h"

#include "acg/boundary/Arguments.h"

#include <algorithm>
#include <utility>

namespace acg
{

namespace
{

/// An argument as it is passed to the member.
struct Passed {
    VARIANTARG Argument{};
    OwnVariant Converted;        ///< a value of the declared type, if the caller's isn't one
    VARIANT* Variable = nullptr; ///< of the script, if any: receives the value after the call
};

void PassReference(Passed& passed, VARTYPE type, void* variable)
{
    V_VT(&passed.Argument) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&passed.Argument) = variable;
}

/// The type that the type library would declare for an integer of that size; any other type unchanged.
VARTYPE DeclaredTypeOf(VARTYPE type)
{
    switch (type) {
    case VT_INT:
    case VT_UINT:
    case VT_UI4:
        return VT_I4;
    case VT_I1:
        return VT_UI1;
    default:
        return type;
    }
}

HRESULT Pass(const Member::Parameter& parameter, VARIANTARG& argument, LCID language, Passed& passed)
{
    if (IsLeftOut(argument) && !parameter.IsOptional) {
        return DISP_E_PARAMNOTOPTIONAL;
    }
    if (parameter.Type == VT_VARIANT) { // the member follows the references, as when it is called by slot
        PassReference(passed, VT_VARIANT, &argument);
        return S_OK;
    }
    VARIANT* value = &argument;
    if (const HRESULT dereferenced = Dereference(value); FAILED(dereferenced)) {
        return dereferenced;
    }
    if (parameter.IsReference && V_ISBYREF(value)) { // a variable with a type, as a compiled host names it
        const auto variable = static_cast<VARTYPE>(V_VT(value) & ~VT_BYREF);
        PassReference(passed, parameter.Type, V_BYREF(value));
        return DeclaredTypeOf(variable) == parameter.Type ? S_OK : DISP_E_TYPEMISMATCH;
    }
    if (!parameter.IsReference && V_VT(&argument) == parameter.Type) {
        passed.Argument = argument;
        return S_OK;
    }
    const HRESULT converted = passed.Converted.Convert(*value, parameter.Type, language);
    if (parameter.IsReference) {
        passed.Variable = value == &argument ? nullptr : value; // nothing is returned to a mere value
        PassReference(passed, parameter.Type, &V_BYREF(&passed.Converted)); // a variant's value itself
    } else {
        passed.Argument = passed.Converted;
    }
    return converted;
}

/// For a parameter without an argument.
HRESULT PassNothing(const Member::Parameter& parameter, Passed& passed)
{
    if (parameter.IsResult) {
        PassReference(passed, parameter.Type, &V_BYREF(&passed.Converted));
        return S_OK;
    }
    V_VT(&passed.Converted) = VT_ERROR;
    V_ERROR(&passed.Converted) = DISP_E_PARAMNOTFOUND;
    PassReference(passed, VT_VARIANT, &passed.Converted);
    return parameter.IsOptional ? S_OK : DISP_E_BADPARAMCOUNT;
}

/// Named arguments come first; the others follow in reverse order.
size_t ParameterOf(UINT index, const DISPPARAMS& arguments, const Member& member)
{
    if (index >= arguments.cNamedArgs) {
        return arguments.cArgs - 1 - index;
    }
    const DISPID name = arguments.rgdispidNamedArgs[index];
    return name == DISPID_PROPERTYPUT ? member.Parameters.size() - 1 : static_cast<size_t>(name);
}

HRESULT PassAll(const Member& member, const DISPPARAMS& arguments, LCID language, std::vector<Passed>& all,
                UINT* badArgument)
{
    for (UINT at = 0; at < arguments.cArgs; ++at) {
        const size_t index = ParameterOf(at, arguments, member);
        const bool isThere = index < all.size() && !member.Parameters[index].IsResult;
        const bool isNamed = at < arguments.cNamedArgs;
        if ((!isThere && !isNamed) || (isThere && V_VT(&all[index].Argument) != VT_EMPTY)) {
            return DISP_E_BADPARAMCOUNT;
        }
        const HRESULT result =
            isThere ? Pass(member.Parameters[index], arguments.rgvarg[at], language, all[index])
                    : DISP_E_PARAMNOTFOUND;
        if (FAILED(result)) {
            if (badArgument != nullptr) {
                *badArgument = at;
            }
            return result;
        }
    }
    HRESULT result = S_OK;
    for (size_t at = 0; at < all.size() && SUCCEEDED(result); ++at) {
        if (V_VT(&all[at].Argument) == VT_EMPTY) {
            result = PassNothing(member.Parameters[at], all[at]);
        }
    }
    return result;
}

/// The error information that a failed member has set for the thread.
void FillIn(EXCEPINFO& exception, HRESULT result)
{
    exception = {.scode = result};
    Microsoft::WRL::ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.GetAddressOf()) == S_OK) {
        info->GetSource(&exception.bstrSource);
        info->GetDescription(&exception.bstrDescription);
    }
}

/// Returns values to the script's variables and the result to the caller.
void CopyBack(const Member& member, std::vector<Passed>& all, VARIANT* result)
{
    for (size_t at = 0; at < all.size(); ++at) {
        OwnVariant& value = all[at].Converted;
        if (member.Parameters[at].IsResult) {
            V_VT(&value) = member.Parameters[at].Type;
            if (result != nullptr) {
                *result = value;
                V_VT(&value) = VT_EMPTY;
            }
        } else if (all[at].Variable != nullptr) {
            std::swap<VARIANT>(*all[at].Variable, value); // its former value is freed with ours
        }
    }
}

} // namespace

HRESULT CallByName(const InterfaceDescription& description, void* object, DISPID id, LCID language,
                   WORD flags, const DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                   UINT* badArgument)
{
    if (arguments == nullptr) {
        return E_POINTER;
    }
    if ((arguments->cArgs > 0 && arguments->rgvarg == nullptr) || arguments->cNamedArgs > arguments->cArgs ||
        (arguments->cNamedArgs > 0 && arguments->rgdispidNamedArgs == nullptr)) {
        return E_INVALIDARG;
    }
    const auto member = std::ranges::find_if(
        description.Members, [&](const Member& one) { return one.Id == id && (one.Kind & flags) != 0; });
    if (member == description.Members.end()) {
        return DISP_E_MEMBERNOTFOUND;
    }
    std::vector<Passed> all(member->Parameters.size());
    const HRESULT passed = PassAll(*member, *arguments, language, all, badArgument);
    if (FAILED(passed)) {
        return passed;
    }
    std::vector<VARTYPE> types;
    std::vector<VARIANTARG*> values;
    for (Passed& one : all) {
        types.push_back(V_VT(&one.Argument));
        values.push_back(&one.Argument);
    }
    VARIANT returned;
    const HRESULT called =
        DispCallFunc(object, member->Slot, CC_STDCALL, VT_ERROR, static_cast<UINT>(all.size()), types.data(),
                     values.data(), &returned);
    if (FAILED(called)) {
        return called;
    }
    if (FAILED(V_ERROR(&returned))) {
        if (exception != nullptr) {
            FillIn(*exception, V_ERROR(&returned));
        }
        return DISP_E_EXCEPTION;
    }
    CopyBack(*member, all, result);
    return S_OK;
}

} // namespace acg
