// A client of the component, which takes from the type library what there is to call.
#pragma once

#include <ACG_MultiISO_TV.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <comdef.h>
#include <span>
#include <string>
#include <vector>

namespace client
{

template <class Interface>
using Ptr = _com_ptr_t<_com_IIID_getter<Interface, __mingw_uuidof<Interface>>>;

inline VARTYPE Plain(VARTYPE type)
{
    return static_cast<VARTYPE>(type & ~VT_BYREF);
}

struct Member {
    std::wstring Name;
    DISPID Id;
    WORD Kind; ///< DISPATCH_METHOD and its like
    ULONG_PTR Slot;
    std::vector<VARTYPE> Types; ///< with the reference; the result last
    size_t Inputs;              ///< without the result
};

/// In the order of their slots.
template <class Interface>
std::vector<Member> Members()
{
    Ptr<ITypeLib> library;
    Ptr<ITypeInfo> named;
    Ptr<ITypeInfo> slots;
    HREFTYPE reference = 0;
    LoadTypeLibEx(L"ACG_MultiISO_TV.dll", REGKIND_NONE, &library);
    library->GetTypeInfoOfGuid(__uuidof(Interface), &named);
    named->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference);
    named->GetRefTypeInfo(reference, &slots);
    std::vector<Member> members;
    FUNCDESC* function = nullptr;
    for (UINT at = 0; SUCCEEDED(slots->GetFuncDesc(at, &function)); ++at) {
        _bstr_t name;
        slots->GetDocumentation(function->memid, name.GetAddress(), nullptr, nullptr, nullptr);
        Member member{name.GetBSTR(), function->memid, static_cast<WORD>(function->invkind),
                      static_cast<ULONG_PTR>(function->oVft)};
        for (const ELEMDESC& described : std::span(function->lprgelemdescParam, size_t(function->cParams))) {
            const bool isReference = described.tdesc.vt == VT_PTR;
            const int type = isReference ? described.tdesc.lptdesc->vt : described.tdesc.vt;
            const int plain = type == VT_PTR ? VT_DISPATCH : type == VT_USERDEFINED ? VT_I4 : type;
            member.Types.push_back(static_cast<VARTYPE>(plain | (isReference ? VT_BYREF : 0)));
            member.Inputs += (described.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) == 0 ? 1 : 0;
        }
        slots->ReleaseFuncDesc(function);
        members.push_back(member);
    }
    return members;
}

template <class Interface>
Member Find(const wchar_t* name, size_t arguments)
{
    const std::vector<Member> all = Members<Interface>();
    return *std::ranges::find_if(all, [&](const Member& one) {
        return one.Name == name && (one.Kind == DISPATCH_PROPERTYPUT ? 1 : arguments) == arguments;
    });
}

enum class Way {
    BySlot,
    ByName,    ///< with arguments and references of the declared types, as C++ and compiled Basic do
    Generated, ///< the same, but the variables are of other integer types of the same size
    AsScript,  ///< by name, and every argument a reference to a variant
};

inline VARIANTARG ReferenceTo(int type, void* variable)
{
    VARIANTARG reference{};
    V_VT(&reference) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&reference) = variable;
    return reference;
}

/// Another integer type of the same size, if there is one.
inline VARTYPE Alike(VARTYPE type, size_t at)
{
    constexpr VARTYPE numbers[] = {VT_INT, VT_UINT, VT_UI4};
    return Plain(type) == VT_I4 ? numbers[at % 3] : Plain(type) == VT_UI1 ? VARTYPE{VT_I1} : type;
}

/// A call and how it ended. It is made at once, and can be repeated.
struct Call {
    Call(Way way, IDispatch& object, Member member, std::vector<_variant_t> arguments)
        : Arguments(std::move(arguments)), HowMade(way), Object(object), Called(std::move(member))
    {
        for (size_t at = 0; at < Called.Types.size(); ++at) {
            const VARTYPE type = Called.Types[at];
            const bool isGiven = at < Arguments.size();
            const bool asVariant = way == Way::AsScript || Plain(type) == VT_VARIANT;
            if (isGiven && !asVariant) {
                Arguments[at].ChangeType(Plain(type));
            }
            Passed.push_back(
                at >= Called.Inputs ? ReferenceTo(type, &V_BYREF(&Value))
                : asVariant         ? ReferenceTo(VT_VARIANT, isGiven ? &Arguments[at] : nullptr)
                : (type & VT_BYREF) != 0
                    ? ReferenceTo(way == Way::Generated ? Alike(type, at) : type, &V_BYREF(&Arguments[at]))
                    : VARIANTARG(Arguments[at]));
        }
        if (way != Way::BySlot) {
            Passed.resize(Arguments.size());
            std::ranges::reverse(Passed);
        }
        Repeat();
    }
    template <class Interface>
    Call(Way way, Interface& object, const wchar_t* name, const std::vector<_variant_t>& arguments = {})
        : Call(way, object, Find<Interface>(name, arguments.size()), arguments)
    {
    }

    HRESULT Repeat()
    {
        Value.Clear();
        V_I4(&Value) = 0x5A5A5A5A; // a member that fails has to take it away
        const auto count = static_cast<UINT>(Passed.size());
        if (HowMade == Way::BySlot) {
            VARIANT result{};
            VARIANTARG* pointers[12];
            std::ranges::transform(Passed, pointers, [](VARIANTARG& one) { return &one; });
            DispCallFunc(&Object, Called.Slot, CC_STDCALL, VT_ERROR, count, Called.Types.data(), pointers,
                         &result);
            V_VT(&Value) = count > Called.Inputs ? Plain(Called.Types.back()) : VARTYPE{VT_EMPTY};
            Result = V_ERROR(&result);
        } else {
            DISPID put = DISPID_PROPERTYPUT;
            DISPPARAMS list{Passed.data(), &put, count, Called.Kind == DISPATCH_PROPERTYPUT ? 1U : 0U};
            BadArgument = MAXUINT;
            Result = Object.Invoke(Called.Id, IID{}, 0, Called.Kind, &list, &Value, &Raised, &BadArgument);
            Result = Result == DISP_E_EXCEPTION ? Raised.scode : Result;
        }
        Ptr<IErrorInfo> info;
        if (FAILED(Result) && GetErrorInfo(0, &info) == S_OK) {
            info->GetDescription(&Raised.bstrDescription);
            info->GetSource(&Raised.bstrSource);
        }
        return Result;
    }

    HRESULT Result = E_UNEXPECTED;
    EXCEPINFO Raised{};
    UINT BadArgument = MAXUINT;
    _variant_t Value;
    std::vector<_variant_t> Arguments;
    std::vector<VARIANTARG> Passed; ///< by name in reverse order
    Way HowMade;
    IDispatch& Object;
    Member Called;
};

inline std::wstring AsText(_variant_t value)
{
    value.ChangeType(VT_BSTR);
    return {V_BSTR(&value), SysStringLen(V_BSTR(&value))};
}

} // namespace client
