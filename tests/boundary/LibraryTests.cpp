// The component's file as a client's system meets it: the four entry points, registration and the type
// library.
#include "tests/boundary/Client.h"

#include <olectl.h>

namespace client
{

/// Calls an entry point of the component, which is loaded for that time.
template <class... Arguments>
HRESULT CallExport(const char* name, Arguments... arguments)
{
    const HMODULE component = LoadLibraryW(L"ACG_MultiISO_TV.dll");
    auto* const found = reinterpret_cast<void*>(GetProcAddress(component, name));
    const HRESULT result = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(Arguments...)>(found)(arguments...);
    FreeLibrary(component);
    return result;
}

TEST(RegistrationTest, TakesBackWhatItHalfDidAndLeavesOtherVersionsAlone)
{
    const std::wstring library = L"TypeLib\\{F7AA3FEF-4DC8-45C9-BE9F-1C10F86CD5FF}\\2.";
    const auto isThere = [](const std::wstring& key) {
        return RegQueryValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, nullptr) == ERROR_SUCCESS;
    };
    EXPECT_EQ(CallExport("DllUnregisterServer"), S_OK);
    ASSERT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, (library + L"0").c_str(), nullptr, REG_SZ, L"2.0", 8), 0);
    // Below a key that lasts until the system goes down, no key can be made that stays: the last class, or
    // the type library, fails.
    for (const auto& [name, result] : {std::pair{std::wstring(L"ACG_MultiISO_TV.CError"), SELFREG_E_CLASS},
                                       {library + L"1", SELFREG_E_TYPELIB}}) {
        HKEY key = nullptr;
        RegCreateKeyExW(HKEY_CLASSES_ROOT, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &key, nullptr);
        RegCloseKey(key);
        EXPECT_EQ(CallExport("DllRegisterServer"), result);
        EXPECT_FALSE(isThere(L"ACG_MultiISO_TV.Encoder"));
        EXPECT_FALSE(isThere(L"CLSID\\{7F51482E-7387-41BF-9478-E44FB07C38B7}"));
        EXPECT_FALSE(isThere(library + L"1"));
        EXPECT_TRUE(isThere(library + L"0"));
    }
    RegDeleteKeyW(HKEY_CLASSES_ROOT, (library + L"0").c_str());
    EXPECT_EQ(CallExport("DllRegisterServer"), S_OK);
}

Ptr<IClassFactory> FactoryOf(REFCLSID id)
{
    Ptr<IClassFactory> factory;
    CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, __uuidof(IClassFactory),
                     reinterpret_cast<void**>(&factory));
    return factory;
}

TEST(LibraryTest, StaysLoadedWhileAnObjectOrALockLives)
{
    const auto canUnload = [] { return CallExport("DllCanUnloadNow"); };
    ASSERT_EQ(canUnload(), S_OK);
    Ptr<IClassFactory> factory = FactoryOf(__uuidof(Encoder));
    EXPECT_EQ(canUnload(), S_FALSE);
    factory->LockServer(TRUE);
    factory.Release();
    EXPECT_EQ(canUnload(), S_FALSE);
    FactoryOf(__uuidof(Encoder))->LockServer(FALSE);
    EXPECT_EQ(canUnload(), S_OK);
    Ptr<_CError> record = RecordOf(*Ptr<_Encoder>(__uuidof(Encoder)));
    EXPECT_EQ(canUnload(), S_FALSE);
    record.Release();
    EXPECT_EQ(canUnload(), S_OK);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(GetModuleHandleW(L"ACG_MultiISO_TV.dll"), nullptr);
}

TEST(LibraryTest, FactoriesMakeBothClassesAndRefuseTheRest)
{
    const auto refuses = [](HRESULT expected, const auto& make) {
        void* object = &expected;
        EXPECT_EQ(make(&object), expected);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(make(nullptr), E_POINTER);
    };
    refuses(CLASS_E_CLASSNOTAVAILABLE, [](void** object) {
        return CallExport("DllGetClassObject", &__uuidof(_Encoder), &__uuidof(IClassFactory), object);
    });
    for (const CLSID& id : {__uuidof(Encoder), __uuidof(CError)}) {
        const Ptr<IClassFactory> factory = FactoryOf(id);
        const Ptr<IUnknown> made(id);
        refuses(CLASS_E_NOAGGREGATION,
                [&](void** object) { return factory->CreateInstance(made, __uuidof(IUnknown), object); });
        refuses(E_NOINTERFACE,
                [&](void** object) { return factory->CreateInstance(nullptr, __uuidof(IPersist), object); });
    }
}

} // namespace client

int main(int argc, char* argv[])
{
    LoadLibraryA(SHARED_RUNTIME); // the component raises in a process that has it, too
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    testing::InitGoogleTest(&argc, argv);
    client::CallExport("DllRegisterServer");
    const int status = RUN_ALL_TESTS();
    client::CallExport("DllUnregisterServer");
    return status;
}
