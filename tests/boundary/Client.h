// A client of the component, which takes from the type library what there is to call.
#pragma once

#include <ACG_MultiISO_TV.h>
#include <gtest/gtest.h>

#include <comutil.h>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <oleauto.h>
#include <string>
#include <vector>
#include <wrl/client.h>

namespace client
{

using Microsoft::WRL::ComPtr;

constexpr VARTYPE VariantReference = VT_BYREF | VT_VARIANT;
constexpr const wchar_t* FactoryKey = L"FFFFFFFFFFFF";

inline std::wstring ComponentPath()
{
    wchar_t path[MAX_PATH];
    const std::filesystem::path own = std::wstring(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
    return (own.parent_path() / L"ACG_MultiISO_TV.dll").wstring();
}

inline ComPtr<ITypeLib> TypeLibrary()
{
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadTypeLibEx(ComponentPath().c_str(), REGKIND_NONE, library.GetAddressOf()), S_OK);
    return library;
}

/// Of the value that a reference leads to.
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
    bool HasResult;

    [[nodiscard]] size_t Inputs() const { return Types.size() - (HasResult ? 1 : 0); }
};

/// In the order of their slots.
inline std::vector<Member> MembersOf(REFIID id)
{
    ComPtr<ITypeInfo> named;
    ComPtr<ITypeInfo> slots;
    HREFTYPE reference = 0;
    EXPECT_EQ(TypeLibrary()->GetTypeInfoOfGuid(id, named.GetAddressOf()), S_OK);
    EXPECT_EQ(named->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    EXPECT_EQ(named->GetRefTypeInfo(reference, slots.GetAddressOf()), S_OK);
    std::vector<Member> members;
    FUNCDESC* function = nullptr;
    for (UINT at = 0; SUCCEEDED(slots->GetFuncDesc(at, &function)); ++at) {
        _bstr_t name;
        UINT count = 0;
        EXPECT_EQ(slots->GetNames(function->memid, name.GetAddress(), 1, &count), S_OK);
        Member member{name.GetBSTR(), function->memid, static_cast<WORD>(function->invkind),
                      static_cast<ULONG_PTR>(function->oVft)};
        for (SHORT parameter = 0; parameter < function->cParams; ++parameter) {
            const ELEMDESC& described = function->lprgelemdescParam[parameter];
            const bool isReference = described.tdesc.vt == VT_PTR;
            const VARTYPE type = isReference ? described.tdesc.lptdesc->vt : described.tdesc.vt;
            const int plain = type == VT_PTR ? VT_DISPATCH : type == VT_USERDEFINED ? VT_I4 : int{type};
            member.Types.push_back(static_cast<VARTYPE>(plain | (isReference ? VT_BYREF : 0)));
            member.HasResult = (described.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
        }
        slots->ReleaseFuncDesc(function);
        members.push_back(member);
    }
    return members;
}

enum class Way {
    BySlot,
    ByName,   ///< with arguments and references of the declared types, as C++ and compiled Basic do
    AsScript, ///< by name, and every argument a reference to a variant
};

inline VARIANTARG ReferenceTo(VARTYPE type, void* variable)
{
    VARIANTARG reference{};
    V_VT(&reference) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&reference) = variable;
    return reference;
}

/// A call that can be made again and again. An optional argument at the end may be missing.
class Call
{
public:
    Call(Way way, IDispatch& object, const Member& member, std::vector<_variant_t> arguments)
        : Arguments(std::move(arguments)), m_way(way), m_object(object), m_member(member)
    {
        for (size_t at = 0; at < Arguments.size(); ++at) {
            const VARTYPE type = member.Types[at];
            const VARTYPE plain = Plain(type);
            if (plain == VT_VARIANT || way == Way::AsScript) {
                Passed.push_back(ReferenceTo(VT_VARIANT, &Arguments[at]));
            } else {
                Arguments[at].ChangeType(plain);
                Passed.push_back((type & VT_BYREF) != 0 ? ReferenceTo(plain, &V_BYREF(&Arguments[at]))
                                                        : VARIANTARG(Arguments[at]));
            }
        }
        if (way == Way::BySlot) {
            Passed.resize(member.Inputs(), ReferenceTo(VT_VARIANT, nullptr));
            if (member.HasResult) {
                Passed.push_back(ReferenceTo(member.Types.back(), &V_BYREF(&Value)));
            }
        } else {
            std::reverse(Passed.begin(), Passed.end());
        }
        for (VARIANTARG& one : Passed) {
            m_pointers.push_back(&one);
        }
    }

    HRESULT Run()
    {
        Value.Clear();
        V_I4(&Value) = 0x5A5A5A5A; // a member that fails has to take it away
        SetErrorInfo(0, nullptr);
        if (m_way == Way::BySlot) {
            VARIANT result;
            EXPECT_EQ(DispCallFunc(&m_object, m_member.Slot, CC_STDCALL, VT_ERROR,
                                   static_cast<UINT>(m_pointers.size()),
                                   const_cast<VARTYPE*>(m_member.Types.data()), m_pointers.data(), &result),
                      S_OK);
            V_VT(&Value) = m_member.HasResult ? Plain(m_member.Types.back()) : VARTYPE{VT_EMPTY};
            return V_ERROR(&result);
        }
        DISPID put = DISPID_PROPERTYPUT;
        DISPPARAMS list{.rgvarg = Passed.data(), .cArgs = static_cast<UINT>(Passed.size())};
        if (m_member.Kind == DISPATCH_PROPERTYPUT) {
            list.rgdispidNamedArgs = &put;
            list.cNamedArgs = 1;
        }
        Exception = {};
        BadArgument = MAXUINT;
        return m_object.Invoke(m_member.Id, IID{}, LOCALE_USER_DEFAULT, m_member.Kind, &list, &Value,
                               &Exception, &BadArgument);
    }

    std::vector<_variant_t> Arguments;
    _variant_t Value;
    std::vector<VARIANTARG> Passed; ///< by name in reverse order
    EXCEPINFO Exception{};
    UINT BadArgument = MAXUINT;

private:
    Way m_way;
    IDispatch& m_object;
    const Member& m_member;
    std::vector<VARIANTARG*> m_pointers;
};

/// How a call ended, in whatever way it was made.
struct Outcome {
    HRESULT Result = S_OK;
    _bstr_t Description;
    _bstr_t Source;
    _variant_t Value;
    std::vector<_variant_t> Arguments;
};

inline Outcome Make(Way way, IDispatch& object, const Member& member, std::vector<_variant_t> arguments)
{
    Call call(way, object, member, std::move(arguments));
    Outcome outcome{.Result = call.Run()};
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.GetAddressOf()) == S_OK) {
        info->GetDescription(outcome.Description.GetAddress());
        info->GetSource(outcome.Source.GetAddress());
    } else if (outcome.Result == DISP_E_EXCEPTION) {
        outcome.Result = call.Exception.scode;
        outcome.Description.Attach(call.Exception.bstrDescription);
        outcome.Source.Attach(call.Exception.bstrSource);
    }
    outcome.Value = call.Value;
    outcome.Arguments = std::move(call.Arguments);
    return outcome;
}

template <class Interface>
const std::vector<Member>& Members()
{
    static const std::vector<Member> members = MembersOf(__uuidof(Interface));
    return members;
}

template <class Interface>
const Member& Find(const wchar_t* name, size_t arguments)
{
    const auto found =
        std::find_if(Members<Interface>().begin(), Members<Interface>().end(), [&](const Member& one) {
            return one.Name == name && one.Inputs() >= arguments &&
                   (one.Kind != DISPATCH_PROPERTYPUT || arguments == 1);
        });
    return *found;
}

template <class Interface>
Outcome Make(Way way, Interface& object, const wchar_t* name, std::vector<_variant_t> arguments = {})
{
    const Member& member = Find<Interface>(name, arguments.size());
    return Make(way, object, member, std::move(arguments));
}

inline std::wstring TextOf(_variant_t value)
{
    value.ChangeType(VT_BSTR);
    return {V_BSTR(&value), SysStringLen(V_BSTR(&value))};
}

/// Of the registered component.
inline ComPtr<_Encoder> NewEncoder()
{
    ComPtr<_Encoder> made;
    EXPECT_EQ(CoCreateInstance(__uuidof(Encoder), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_Encoder),
                               reinterpret_cast<void**>(made.GetAddressOf())),
              S_OK);
    return made;
}

inline ComPtr<_CError> RecordOf(_Encoder& encoder)
{
    ComPtr<_CError> record;
    EXPECT_EQ(encoder.get_LastError(record.GetAddressOf()), S_OK);
    return record;
}

/// A device with a card of its own, as cards last as long as the process.
inline std::wstring ParametersFor(LONG card)
{
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"Device=com1,uid=%08lX", card);
    return text;
}

/// ReOpenEncoder goes by the number that OpenEncoder asks for.
inline void Open(_Encoder& encoder, LONG card)
{
    ASSERT_EQ(encoder.put_Parameters(_bstr_t(ParametersFor(card).c_str())), S_OK);
    ASSERT_EQ(encoder.ReOpenEncoder(), S_OK);
}

} // namespace client
