// The four functions that a host's component loader calls, and the class factories.
#include <initguid.h> // defines the identifiers of the type library

#include "acg/boundary/Classes.h"
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
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override
    {
        return outer != nullptr ? NoObject(object, CLASS_E_NOAGGREGATION) : Create<Class>(id, object);
    }
    STDMETHODIMP LockServer(BOOL isLocked) override
    {
        ModuleReferences += isLocked != FALSE ? 1 : -1;
        return S_OK;
    }
};

} // namespace

} // namespace acg

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, LPVOID* object)
{
    if (classId == __uuidof(Encoder)) {
        return acg::Create<acg::Factory<acg::AutomationEncoder>>(id, object);
    }
    if (classId == __uuidof(CError)) {
        return acg::Create<acg::Factory<acg::AutomationError>>(id, object);
    }
    return acg::NoObject(object, CLASS_E_CLASSNOTAVAILABLE);
}

STDAPI DllCanUnloadNow()
{
    return acg::ModuleReferences == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer()
{
    return acg::Register();
}

STDAPI DllUnregisterServer()
{
    return acg::Unregister();
}
