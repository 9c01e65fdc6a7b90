#include "boundary/CallByName.h"

#include "boundary/Arguments.h"

#include <memory>
#include <ranges>
#include <utility>
#include <vector>

namespace acg
{

namespace
{

constexpr VARTYPE VariantReference = VT_BYREF | VT_VARIANT;

/// What the type library says of a parameter.
struct Parameter {
    VARTYPE Type; ///< without the reference
    bool IsReference;
};

/// Those of a function, without that of its result.
std::vector<Parameter> ParametersOf(const FUNCDESC& function)
{
    std::vector<Parameter> parameters;
    for (SHORT at = 0; at < function.cParams; ++at) {
        const TYPEDESC& type = function.lprgelemdescParam[at].tdesc;
        const PARAMDESC& description = function.lprgelemdescParam[at].paramdesc;
        const bool isReference = type.vt == VT_PTR;
        const VARTYPE plain = isReference ? type.lptdesc->vt : type.vt;
        if ((description.wParamFlags & PARAMFLAG_FRETVAL) == 0) {
            // The named types among the arguments are enums.
            parameters.push_back({plain == VT_USERDEFINED ? VARTYPE{VT_I4} : plain, isReference});
        }
    }
    return parameters;
}

/// None if there is no such member: the system's own call then says so.
std::vector<Parameter> FindParameters(ITypeInfo& info, DISPID member, WORD flags)
{
    const auto release = [&](FUNCDESC* function) { info.ReleaseFuncDesc(function); };
    for (UINT at = 0;; ++at) {
        FUNCDESC* described = nullptr;
        const HRESULT result = info.GetFuncDesc(at, &described);
        if (result == TYPE_E_ELEMENTNOTFOUND) {
            return {};
        }
        Check(result);
        const std::unique_ptr<FUNCDESC, decltype(release)> function(described, release);
        if (function->memid == member && (function->invkind & flags) != 0) {
            return ParametersOf(*function);
        }
    }
}

/// The variable of a script that a reference leads to; a parameter of a script's own procedure leads on to
/// the variable of its caller.
VARIANT* VariableOf(const VARIANTARG& reference)
{
    VARIANT* const variable = V_VARIANTREF(&reference);
    const bool leadsOn = variable != nullptr && V_VT(variable) == VariantReference;
    return leadsOn ? V_VARIANTREF(variable) : variable;
}

/// An argument as a value of the declared type, where it isn't one.
struct Converted {
    Variant Value;
    VARIANT* Variable = nullptr; ///< of the script, if any: it gets the value back
};

/// Makes of an argument what the type library's own call takes for the parameter. False where it doesn't
/// convert.
bool Fit(const Parameter& parameter, VARIANTARG& argument, Converted& converted)
{
    if (parameter.Type == VT_VARIANT || IsLeftOut(argument)) {
        return true; // the system takes the one, and refuses the other
    }
    VARIANT* variable = nullptr;
    if (V_VT(&argument) == VariantReference) {
        variable = VariableOf(argument);
        if (variable == nullptr) {
            return false;
        }
        if (V_ISBYREF(variable)) { // it stands for a variable with a type, as a compiled host would name it
            argument = *variable;
            variable = nullptr;
        }
    }
    const bool fits = parameter.IsReference ? V_ISBYREF(&argument) : V_VT(&argument) == parameter.Type;
    if (variable == nullptr && fits) {
        return true;
    }
    if (!converted.Value.Convert(variable != nullptr ? *variable : argument, parameter.Type)) {
        return false;
    }
    if (parameter.IsReference) {
        converted.Variable = variable; // a mere value gets nothing back
        V_VT(&argument) = static_cast<VARTYPE>(VT_BYREF | parameter.Type);
        V_BYREF(&argument) = &V_BYREF(&converted.Value); // where a variant has its value, of whatever type
    } else {
        argument = converted.Value;
    }
    return true;
}

class CallArguments
{
public:
    CallArguments(const std::vector<Parameter>& parameters, const DISPPARAMS& given, UINT* bad)
        : m_arguments(given.rgvarg, given.rgvarg + given.cArgs),
          m_converted(given.cArgs), m_passed{.rgvarg = m_arguments.data(),
                                             .rgdispidNamedArgs = given.rgdispidNamedArgs,
                                             .cArgs = given.cArgs,
                                             .cNamedArgs = given.cNamedArgs}
    {
        for (UINT at = 0; at < given.cArgs; ++at) {
            const size_t index = ParameterAt(at, parameters.size());
            if (index < parameters.size() && !Fit(parameters[index], m_arguments[at], m_converted[at])) {
                if (bad != nullptr) {
                    *bad = at;
                }
                Check(DISP_E_TYPEMISMATCH);
            }
        }
    }

    DISPPARAMS* Passed() { return &m_passed; }

    /// In the order of the parameters: a variable that was given twice ends with the last value.
    void GiveBack()
    {
        for (Converted& one : std::views::reverse(m_converted)) {
            if (one.Variable != nullptr) {
                std::swap<VARIANT>(*one.Variable, one.Value); // what it held before goes with ours
            }
        }
    }

private:
    /// Arguments with a name stand first; those without stand behind them, in reverse order.
    [[nodiscard]] size_t ParameterAt(UINT argument, size_t parameterCount) const
    {
        if (argument >= m_passed.cNamedArgs) {
            return m_passed.cArgs - 1 - argument;
        }
        const DISPID name = m_passed.rgdispidNamedArgs[argument];
        return name == DISPID_PROPERTYPUT ? parameterCount - 1 : static_cast<size_t>(name);
    }

    std::vector<VARIANTARG> m_arguments;
    std::vector<Converted> m_converted;
    DISPPARAMS m_passed;
};

} // namespace

HRESULT CallByName(ITypeInfo& Interface, void* Object, DISPID Member, WORD Flags, const DISPPARAMS* Arguments,
                   VARIANT* Result, EXCEPINFO* Exception, UINT* BadArgument) noexcept
{
    return Guarded([&] {
        const DISPPARAMS& given = Given(Arguments);
        const bool isWhole = (given.cArgs == 0 || given.rgvarg != nullptr) &&
                             given.cNamedArgs <= given.cArgs &&
                             (given.cNamedArgs == 0 || given.rgdispidNamedArgs != nullptr);
        Check(isWhole ? S_OK : E_INVALIDARG);
        CallArguments arguments(FindParameters(Interface, Member, Flags), given, BadArgument);
        Check(Interface.Invoke(Object, Member, Flags, arguments.Passed(), Result, Exception, BadArgument));
        arguments.GiveBack();
    });
}

} // namespace acg
