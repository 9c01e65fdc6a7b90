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
/// work through Run or CallWithResult; calls by name reach them through the type library.
template <class Class, class Interface>
class AutomationObject : public ComObject<Interface, IProvideClassInfo, ISupportErrorInfo>
{
    using Base = ComObject<Interface, IProvideClassInfo, ISupportErrorInfo>;

public:
    STDMETHODIMP QueryInterface(REFIID id, void** object) override
    {
        return Base::QueryInterface(id == __uuidof(IDispatch) ? __uuidof(Interface) : id, object);
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override
    {
        return CallWithResult(count, [] { return 1; });
    }
    STDMETHODIMP GetTypeInfo(UINT index, LCID /*language*/, ITypeInfo** info) override
    {
        const HRESULT refused = NoObject(reinterpret_cast<void**>(info), index == 0 ? S_OK : DISP_E_BADINDEX);
        return FAILED(refused) ? refused : Described(IID{}, [&] { return m_description.Info.CopyTo(info); });
    }
    STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID /*language*/,
                               DISPID* ids) override
    {
        return Described(reserved, [&] { return m_description.Info->GetIDsOfNames(names, count, ids); });
    }
    STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID language, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override
    {
        return Described(reserved, [&] {
            return CallByName(m_description, static_cast<Interface*>(this), member, language, flags,
                              arguments, result, exception, badArgument);
        });
    }

    STDMETHODIMP GetClassInfo(ITypeInfo** info) override { return TypeInfoOf(__uuidof(Class), info); }

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID id) override
    {
        return id == __uuidof(Interface) ? S_OK : S_FALSE;
    }

protected:
    /// Runs a member without a result. The object outlives the call, whatever its host releases meanwhile: a
    /// dialog, and the default value of an object, let the host's code run.
    template <class Body>
    HRESULT Run(const Body& body) noexcept
    {
        const Microsoft::WRL::ComPtr<Interface> alive(this);
        return Guarded([&] {
            body();
            return S_OK;
        });
    }

    /// Runs a member with a result, which is 0, or no text, if it fails. It receives copies of the variables.
    /// A text comes first: if there is no memory to copy it back, no variable has changed.
    template <class Callers, class Body, class... Variables>
    HRESULT CallWithResult(Callers* result, const Body& body, Variables*... callers) noexcept
    {
        static_assert(IsTextFirst<Variables...>);
        const Microsoft::WRL::ComPtr<Interface> alive(this);
        return Guarded([&] {
            if (result == nullptr) {
                return E_POINTER;
            }
            *result = Callers();
            if (((callers == nullptr) || ...)) {
                return E_POINTER;
            }
            std::tuple<InOut<Variables>...> variables(callers...);
            const auto call = [&](auto&... one) {
                const auto own = body(one.Copy...);
                (one.CopyBack(), ...);
                return ForCaller<Callers>(own);
            };
            *result = std::apply(call, variables);
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
