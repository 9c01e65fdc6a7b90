// The four functions that a host's component loader calls, and the factories behind them.
#include <initguid.h> // defines the identifiers of the type library

#include "acg/boundary/AutomationEncoder.h"
#include "acg/boundary/AutomationError.h"
#include "acg/boundary/Registration.h"

#include <olectl.h>

namespace acg
{

namespace
{

template <class Class>
class Factory final : public ComObject<IClassFactory>
{
public:
    STDMETHODIMP CreateInstance(IUnknown* Outer, REFIID Wanted, void** Object) override
    {
        return Outer != nullptr ? NoObject(Object, CLASS_E_NOAGGREGATION) : Create<Class>(Wanted, Object);
    }
    STDMETHODIMP LockServer(BOOL Lock) override
    {
        Uses += Lock != FALSE ? 1 : -1;
        return S_OK;
    }
};

} // namespace

} // namespace acg

STDAPI DllGetClassObject(REFCLSID Class, REFIID Wanted, LPVOID* Object)
{
    if (Class == __uuidof(Encoder)) {
        return acg::Create<acg::Factory<acg::AutomationEncoder>>(Wanted, Object);
    }
    if (Class == __uuidof(CError)) {
        return acg::Create<acg::Factory<acg::AutomationError>>(Wanted, Object);
    }
    return acg::NoObject(Object, CLASS_E_CLASSNOTAVAILABLE);
}

STDAPI DllCanUnloadNow()
{
    return acg::Uses == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer()
{
    return acg::Register();
}

STDAPI DllUnregisterServer()
{
    return acg::Unregister();
}
