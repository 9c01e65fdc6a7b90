#include "acg/boundary/TypeLibrary.h"

#include "acg/boundary/Results.h"
#include "acg/platform/LibraryFile.h"

#include <memory>
#include <oleauto.h>
#include <utility>

namespace acg
{

namespace
{

Member::Parameter ParameterOf(const ELEMDESC& described)
{
    const TYPEDESC& type = described.tdesc;
    const USHORT flags = described.paramdesc.wParamFlags;
    const bool isReference = type.vt == VT_PTR;
    VARTYPE plain = isReference ? type.lptdesc->vt : type.vt;
    if (plain == VT_USERDEFINED) { // an enum
        plain = VT_I4;
    } else if (plain == VT_PTR) { // an object
        plain = VT_DISPATCH;
    }
    return {plain, isReference, (flags & PARAMFLAG_FOPT) != 0, (flags & PARAMFLAG_FRETVAL) != 0};
}

Member MemberOf(const FUNCDESC& function)
{
    Member member{
        .Id = function.memid, .Kind = function.invkind, .Slot = static_cast<ULONG_PTR>(function.oVft)};
    for (SHORT at = 0; at < function.cParams; ++at) {
        member.Parameters.push_back(ParameterOf(function.lprgelemdescParam[at]));
    }
    return member;
}

} // namespace

HRESULT LoadOwnTypeLibrary(ITypeLib** library)
{
    return LoadTypeLibEx(OwnPath().c_str(), REGKIND_NONE, library);
}

HRESULT TypeInfoOf(REFGUID id, ITypeInfo** info) noexcept
{
    return Guarded([&] {
        if (info == nullptr) {
            return E_POINTER;
        }
        *info = nullptr;
        Microsoft::WRL::ComPtr<ITypeLib> library;
        const HRESULT loaded = LoadOwnTypeLibrary(library.GetAddressOf());
        return FAILED(loaded) ? loaded : library->GetTypeInfoOfGuid(id, info);
    });
}

HRESULT Describe(REFIID id, InterfaceDescription& description)
{
    InterfaceDescription described;
    HRESULT result = TypeInfoOf(id, described.Info.GetAddressOf());
    // That is the dispinterface, as a script sees it; it refers to the vtable interface.
    constexpr UINT vtableInterface = static_cast<UINT>(-1);
    HREFTYPE reference = 0;
    Microsoft::WRL::ComPtr<ITypeInfo> slots;
    if (SUCCEEDED(result)) {
        result = described.Info->GetRefTypeOfImplType(vtableInterface, &reference);
    }
    if (SUCCEEDED(result)) {
        result = described.Info->GetRefTypeInfo(reference, slots.GetAddressOf());
    }
    for (UINT at = 0; SUCCEEDED(result); ++at) {
        const auto release = [&](FUNCDESC* function) { slots->ReleaseFuncDesc(function); };
        FUNCDESC* function = nullptr;
        result = slots->GetFuncDesc(at, &function);
        if (result == TYPE_E_ELEMENTNOTFOUND) {
            std::swap(description, described);
            return S_OK;
        }
        if (SUCCEEDED(result)) {
            const std::unique_ptr<FUNCDESC, decltype(release)> owner(function, release);
            described.Members.push_back(MemberOf(*function));
        }
    }
    return result;
}

} // namespace acg
