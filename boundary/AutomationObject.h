// What both classes of the component have in common: they can be called by name, describe themselves, and
// give error information.
#pragma once

#include "boundary/Arguments.h"
#include "boundary/CallByName.h"
#include "boundary/ComObject.h"
#include "boundary/TypeLibrary.h"

#include <ocidl.h>
#include <wrl/client.h>

namespace acg
{

/// An object of a class of the type library, with its default interface. Members of the interface run their
/// work through Do or Answer; calls by name come to them through the type library.
template <class Class, class Interface>
class AutomationObject : public ComObject<Interface, IProvideClassInfo, ISupportErrorInfo>
{
    using Base = ComObject<Interface, IProvideClassInfo, ISupportErrorInfo>;

public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID Wanted, void** Object) override
    {
        return Base::QueryInterface(Wanted == __uuidof(IDispatch) ? __uuidof(Interface) : Wanted, Object);
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* Count) override
    {
        return Guarded([&] { Given(Count) = 1; });
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT Index, LCID /*language*/, ITypeInfo** Info) override
    {
        return Guarded([&] {
            Given(Info) = nullptr;
            Check(Index == 0 ? TypeInfoOf(__uuidof(Interface), Info) : DISP_E_BADINDEX);
        });
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID Reserved, LPOLESTR* Names, UINT Count, LCID /*language*/,
                                            DISPID* Ids) override
    {
        return WithTypeInfo(Reserved, [&](ITypeInfo& info) { return info.GetIDsOfNames(Names, Count, Ids); });
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID Member, REFIID Reserved, LCID /*language*/, WORD Flags,
                                     DISPPARAMS* Arguments, VARIANT* Result, EXCEPINFO* Exception,
                                     UINT* BadArgument) override
    {
        return WithTypeInfo(Reserved, [&](ITypeInfo& info) {
            return CallByName(info, static_cast<Interface*>(this), Member, Flags, Arguments, Result,
                              Exception, BadArgument);
        });
    }

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** Info) override
    {
        return TypeInfoOf(__uuidof(Class), Info);
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID Id) override
    {
        return Id == __uuidof(Interface) ? S_OK : S_FALSE;
    }

protected:
    /// Runs a member that gives no result. The object outlives it, whatever its host lets go of meanwhile: a
    /// dialog, and the default value of an object, let the host's code run.
    template <class Body>
    HRESULT Do(const Body& Run) noexcept
    {
        const Microsoft::WRL::ComPtr<Interface> alive(this);
        return Guarded(Run);
    }

    /// Runs a member that gives a result: 0, or no text, where it fails.
    template <class Callers, class Body>
    HRESULT Answer(Callers* Result, const Body& Run) noexcept
    {
        return Do([&] {
            Given(Result) = Callers();
            *Result = Outgoing<Callers>(Run());
        });
    }

private:
    template <class Body>
    HRESULT WithTypeInfo(REFIID Reserved, const Body& Use)
    {
        if (Reserved != IID{}) {
            return DISP_E_UNKNOWNINTERFACE;
        }
        // Converting an argument may let the host's code run, as a member may.
        const Microsoft::WRL::ComPtr<Interface> alive(static_cast<Interface*>(this));
        Microsoft::WRL::ComPtr<ITypeInfo> info;
        const HRESULT found = TypeInfoOf(__uuidof(Interface), info.GetAddressOf());
        return FAILED(found) ? found : Use(*info.Get());
    }
};

} // namespace acg
