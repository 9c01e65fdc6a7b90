#include "boundary/CallByName.h"

#include "boundary/Arguments.h"

#include <memory>
#include <utility>
#include <vector>

namespace acg
{

namespace
{

constexpr VARTYPE VariantReference = VT_BYREF | VT_VARIANT;

/// What the type library says of a parameter.
struct Parameter {
    VARTYPE Type; ///< without the reference of an in/out one
    bool IsInOut;
};

/// The parameters of a function, without that of its result.
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
std::vector<Parameter> ParametersOf(ITypeInfo& info, DISPID member, WORD flags)
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

/// An argument that was converted, and the script's variable that gets it back.
struct Converted {
    Variant Value;
    VARIANT* Variable = nullptr;
};

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
            if (index < parameters.size() && !Convert(parameters[index], m_arguments[at], m_converted[at])) {
                if (bad != nullptr) {
                    *bad = at;
                }
                Check(DISP_E_TYPEMISMATCH);
            }
        }
    }

    DISPPARAMS* Passed() { return &m_passed; }

    void GiveBack()
    {
        for (Converted& one : m_converted) {
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

    static bool Convert(const Parameter& parameter, VARIANTARG& argument, Converted& converted)
    {
        const bool isVariable = V_VT(&argument) == VariantReference;
        const bool isAsDeclared =
            parameter.IsInOut ? V_ISBYREF(&argument) && !isVariable : V_VT(&argument) == parameter.Type;
        if (isAsDeclared || parameter.Type == VT_VARIANT || IsLeftOut(argument)) {
            return true; // the system judges it
        }
        VARIANT* const source = isVariable ? V_VARIANTREF(&argument) : &argument;
        if (source == nullptr || !converted.Value.Convert(*source, parameter.Type)) {
            return false;
        }
        if (!parameter.IsInOut) {
            argument = converted.Value;
            return true;
        }
        converted.Variable = isVariable ? V_VARIANTREF(&argument) : nullptr; // a mere value gets nothing back
        V_VT(&argument) = static_cast<VARTYPE>(VT_BYREF | parameter.Type);
        V_BYREF(&argument) = &V_BYREF(&converted.Value); // its value, of whatever type
        return true;
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
        CallArguments arguments(ParametersOf(Interface, Member, Flags), Given(Arguments), BadArgument);
        Check(Interface.Invoke(Object, Member, Flags, arguments.Passed(), Result, Exception, BadArgument));
        arguments.GiveBack();
    });
}

} // namespace acg
