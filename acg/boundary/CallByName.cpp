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
    OwnVariant Converted;        ///< a value of the declared type, where the caller's isn't one
    VARIANT* Variable = nullptr; ///< of the script, if any: receives the value after the call
};

void PassReference(Passed& passed, VARTYPE type, void* variable)
{
    V_VT(&passed.Argument) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&passed.Argument) = variable;
}

HRESULT Pass(const Member::Parameter& parameter, VARIANTARG& given, LCID language, Passed& passed)
{
    if (IsLeftOut(given) && !parameter.IsOptional) {
        return DISP_E_PARAMNOTOPTIONAL;
    }
    if (parameter.Type == VT_VARIANT) { // the member follows the references, as when it is called by slot
        PassReference(passed, VT_VARIANT, &given);
        return S_OK;
    }
    VARIANT* value = &given;
    if (const HRESULT followed = Follow(value); FAILED(followed)) {
        return followed;
    }
    if (parameter.IsReference && V_ISBYREF(value)) { // a variable with a type, as a compiled host names it
        passed.Argument = *value;
        return V_VT(value) == (VT_BYREF | parameter.Type) ? S_OK : DISP_E_TYPEMISMATCH;
    }
    if (!parameter.IsReference && V_VT(&given) == parameter.Type) {
        passed.Argument = given;
        return S_OK;
    }
    const HRESULT converted = passed.Converted.Convert(*value, parameter.Type, language);
    if (parameter.IsReference) {
        passed.Variable = value == &given ? nullptr : value; // nothing is returned to a mere value
        PassReference(passed, parameter.Type, &V_BYREF(&passed.Converted)); // where a variant has its value
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
size_t ParameterOf(UINT argument, const DISPPARAMS& given, const Member& member)
{
    if (argument >= given.cNamedArgs) {
        return given.cArgs - 1 - argument;
    }
    const DISPID name = given.rgdispidNamedArgs[argument];
    return name == DISPID_PROPERTYPUT ? member.Parameters.size() - 1 : static_cast<size_t>(name);
}

HRESULT PassAll(const Member& member, const DISPPARAMS& given, LCID language, std::vector<Passed>& all,
                UINT* badArgument)
{
    for (UINT at = 0; at < given.cArgs; ++at) {
        const size_t index = ParameterOf(at, given, member);
        if (index >= all.size() || member.Parameters[index].IsResult ||
            V_VT(&all[index].Argument) != VT_EMPTY) {
            return DISP_E_BADPARAMCOUNT;
        }
        const HRESULT result = Pass(member.Parameters[index], given.rgvarg[at], language, all[index]);
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
void GiveBack(const Member& member, std::vector<Passed>& all, VARIANT* result)
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

HRESULT CallByName(const InterfaceDescription& Interface, void* Object, DISPID Id, LCID Language, WORD Flags,
                   const DISPPARAMS* Given, VARIANT* Result, EXCEPINFO* Exception, UINT* BadArgument)
{
    if (Given == nullptr) {
        return E_POINTER;
    }
    if ((Given->cArgs > 0 && Given->rgvarg == nullptr) || Given->cNamedArgs > Given->cArgs ||
        (Given->cNamedArgs > 0 && Given->rgdispidNamedArgs == nullptr)) {
        return E_INVALIDARG;
    }
    const auto member = std::ranges::find_if(
        Interface.Members, [&](const Member& one) { return one.Id == Id && (one.Kind & Flags) != 0; });
    if (member == Interface.Members.end()) {
        return DISP_E_MEMBERNOTFOUND;
    }
    std::vector<Passed> all(member->Parameters.size());
    HRESULT result = PassAll(*member, *Given, Language, all, BadArgument);
    if (FAILED(result)) {
        return result;
    }
    std::vector<VARTYPE> types;
    std::vector<VARIANTARG*> arguments;
    for (Passed& one : all) {
        types.push_back(V_VT(&one.Argument));
        arguments.push_back(&one.Argument);
    }
    VARIANT returned;
    result = DispCallFunc(Object, member->Slot, CC_STDCALL, VT_ERROR, static_cast<UINT>(all.size()),
                          types.data(), arguments.data(), &returned);
    if (FAILED(result)) {
        return result;
    }
    if (FAILED(V_ERROR(&returned))) {
        if (Exception != nullptr) {
            FillIn(*Exception, V_ERROR(&returned));
        }
        return DISP_E_EXCEPTION;
    }
    GiveBack(*member, all, Result);
    return S_OK;
}

} // namespace acg
