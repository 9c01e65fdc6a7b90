// The type library in the resources of this DLL, and its descriptions of interfaces.
#pragma once

#include <vector>
#include <windows.h>

#include <oaidl.h>
#include <wrl/client.h>

namespace acg
{

HRESULT LoadOwnTypeLibrary(ITypeLib** library);

/// The description of an interface or a class.
HRESULT TypeInfoOf(REFGUID id, ITypeInfo** info) noexcept;

/// A member of an interface, as far as a call by name needs it.
struct Member {
    struct Parameter {
        VARTYPE Type; ///< without the reference
        bool IsReference;
        bool IsOptional;
        bool IsResult; ///< the last one, if any
    };
    DISPID Id;
    int Kind;       ///< DISPATCH_METHOD and its like
    ULONG_PTR Slot; ///< its offset among the interface's functions
    std::vector<Parameter> Parameters;
};

/// Looked up once for an object that is called by name.
struct InterfaceDescription {
    Microsoft::WRL::ComPtr<ITypeInfo> Info;
    std::vector<Member> Members;
};

HRESULT Describe(REFIID id, InterfaceDescription& description);

} // namespace acg
