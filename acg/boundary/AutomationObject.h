// What both classes of the component have in common: they can be called by name, describe themselves, and
// support error information.
#pragma once

#include "acg/boundary/Arguments.h"
#include "acg/boundary/CallByName.h"
#include "acg/boundary/ComObject.h"
#include "acg/boundary/TypeLibrary.h"

#include <ocidl.h>
#include <tuple>
#include <wrl/client.h>

namespace acg
{

/// An object of a class of the type library, with its default interface. Members of the interface run their
/// work through Run or Answer; calls by name reach them through the type library.
template <class Class, class Interface>
class AutomationObject : public ComObject<Interface, IProvideClassInfo, ISupportErrorInfo>
{
    using Base = ComObject<Interface, IProvideClassInfo, ISupportErrorInfo>;

public:
    STDMETHODIMP QueryInterface(REFIID Wanted, void** Object) override
    {
        return Base::QueryInterface(Wanted == __uuidof(IDispatch) ? __uuidof(Interface) : Wanted, Object);
    }

    STDMETHODIMP GetTypeInfoCount(UINT* Count) override
    {
        return Answer(Count, [] { return 1; });
    }
    STDMETHODIMP GetTypeInfo(UINT Index, LCID /*language*/, ITypeInfo** Info) override
    {
        const HRESULT refused = NoObject(reinterpret_cast<void**>(Info), Index == 0 ? S_OK : DISP_E_BADINDEX);
        return FAILED(refused) ? refused : Described(IID{}, [&] { return m_description.Info.CopyTo(Info); });
    }
    STDMETHODIMP GetIDsOfNames(REFIID Reserved, LPOLESTR* Names, UINT Count, LCID /*language*/,
                               DISPID* Ids) override
    {
        return Described(Reserved, [&] { return m_description.Info->GetIDsOfNames(Names, Count, Ids); });
    }
    STDMETHODIMP Invoke(DISPID Member, REFIID Reserved, LCID Language, WORD Flags, DISPPARAMS* Arguments,
                        VARIANT* Result, EXCEPINFO* Exception, UINT* BadArgument) override
    {
        return Described(Reserved, [&] {
            return CallByName(m_description, static_cast<Interface*>(this), Member, Language, Flags,
                              Arguments, Result, Exception, BadArgument);
        });
    }

    STDMETHODIMP GetClassInfo(ITypeInfo** Info) override { return TypeInfoOf(__uuidof(Class), Info); }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID Id) override
    {
        return Id == __uuidof(Interface) ? S_OK : S_FALSE;
    }

protected:
    /// Runs a member without a result. The object outlives the call, whatever its host releases meanwhile: a
    /// dialog, and the default value of an object, let the host's code run.
    template <class Body>
    HRESULT Run(const Body& Work) noexcept
    {
        const Microsoft::WRL::ComPtr<Interface> alive(this);
        return Guarded([&] {
            Work();
            return S_OK;
        });
    }

    /// Runs a member with a result, which is 0, or no text, if it fails. The work receives copies of the
    /// variables. A text comes first: if there is no memory to copy it back, no variable has changed.
    template <class Callers, class Body, class... Variables>
    HRESULT Answer(Callers* Result, const Body& Work, Variables*... InOut) noexcept
    {
        static_assert(IsTextFirst<Variables...>);
        const Microsoft::WRL::ComPtr<Interface> alive(this);
        return Guarded([&] {
            if (Result == nullptr) {
                return E_POINTER;
            }
            *Result = Callers();
            if (((InOut == nullptr) || ...)) {
                return E_POINTER;
            }
            std::tuple<Variable<Variables>...> variables(InOut...);
            const auto work = [&](auto&... one) {
                const auto result = Work(one.Copy...);
                (one.GiveBack(), ...);
                return ForCaller<Callers>(result);
            };
            *Result = std::apply(work, variables);
            return S_OK;
        });
    }

private:
    template <class First = void, class... Others>
    static constexpr bool IsTextFirst = !(std::is_same_v<Others, BSTR> || ...);

    template <class Body>
    HRESULT Described(REFIID reserved, const Body& use) noexcept
    {
        // Converting an argument may let the host's code run, as a member may.
        const Microsoft::WRL::ComPtr<Interface> alive(static_cast<Interface*>(this));
        return Guarded([&] {
            if (reserved != IID{}) {
                return DISP_E_UNKNOWNINTERFACE;
            }
            const HRESULT described =
                m_description.Info ? S_OK : Describe(__uuidof(Interface), m_description);
            return FAILED(described) ? described : use();
        });
    }

    InterfaceDescription m_description; ///< filled by the first call by name
};

} // namespace acg
