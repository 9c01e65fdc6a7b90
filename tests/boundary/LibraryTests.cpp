// The component's file as a client's system meets it: the four entry points, registration and the type
// library.
#include "tests/boundary/Client.h"

#include <array>
#include <malloc.h>
#include <olectl.h>

namespace client
{

namespace
{

/// The component as it is loaded by hand.
class LoadedComponent
{
public:
    LoadedComponent() : m_module(LoadLibraryW(ComponentPath().c_str())) {}
    ~LoadedComponent() { FreeLibrary(m_module); }
    LoadedComponent(const LoadedComponent&) = delete;
    LoadedComponent& operator=(const LoadedComponent&) = delete;

    [[nodiscard]] HRESULT Register() const { return Call("DllRegisterServer"); }
    [[nodiscard]] HRESULT Unregister() const { return Call("DllUnregisterServer"); }
    [[nodiscard]] HRESULT CanUnload() const { return Call("DllCanUnloadNow"); }
    HRESULT GetClassObject(REFCLSID id, REFIID wanted, void** object) const
    {
        return Call("DllGetClassObject", &id, &wanted, object);
    }
    [[nodiscard]] ComPtr<IClassFactory> Factory(REFCLSID id) const
    {
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(
            GetClassObject(id, __uuidof(IClassFactory), reinterpret_cast<void**>(factory.GetAddressOf())),
            S_OK);
        return factory;
    }
    [[nodiscard]] ComPtr<_Encoder> NewEncoder() const
    {
        ComPtr<_Encoder> made;
        EXPECT_EQ(
            Factory(__uuidof(Encoder))
                ->CreateInstance(nullptr, __uuidof(_Encoder), reinterpret_cast<void**>(made.GetAddressOf())),
            S_OK);
        return made;
    }

private:
    template <class... Arguments>
    HRESULT Call(const char* name, Arguments... arguments) const
    {
        auto* const found = reinterpret_cast<void*>(GetProcAddress(m_module, name));
        return reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(Arguments...)>(found)(arguments...);
    }

    HMODULE m_module;
};

/// The key's own value, or "nothing" where there is no such key.
std::wstring Registered(const std::wstring& key)
{
    wchar_t text[MAX_PATH] = L"nothing";
    DWORD size = sizeof(text);
    RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_ANY, nullptr, text, &size);
    return text;
}

std::wstring IdText(const GUID& id)
{
    wchar_t text[40];
    StringFromGUID2(id, text, static_cast<int>(std::size(text)));
    return text;
}

std::wstring TypeLibraryKey()
{
    TLIBATTR* attributes = nullptr;
    const ComPtr<ITypeLib> library = TypeLibrary();
    EXPECT_EQ(library->GetLibAttr(&attributes), S_OK);
    const std::wstring key = L"TypeLib\\" + IdText(attributes->guid);
    library->ReleaseTLibAttr(attributes);
    return key;
}

/// (What else a registration leaves, the test of the package looks for.)
void ExpectUnknown()
{
    for (const std::wstring& key :
         {std::wstring(L"ACG_MultiISO_TV.Encoder"), std::wstring(L"ACG_MultiISO_TV.CError"),
          L"CLSID\\" + IdText(__uuidof(Encoder)), L"CLSID\\" + IdText(__uuidof(CError)),
          L"Interface\\" + IdText(__uuidof(_Encoder)), L"Interface\\" + IdText(__uuidof(_CError)),
          TypeLibraryKey() + L"\\2.1"}) {
        EXPECT_EQ(Registered(key), L"nothing");
    }
}

/// The tests of this suite register for themselves.
class RegistrationTest : public testing::Test
{
protected:
    RegistrationTest() { EXPECT_EQ(component.Unregister(), S_OK); }
    ~RegistrationTest() override { EXPECT_EQ(component.Register(), S_OK); }

    const LoadedComponent component;
};

TEST_F(RegistrationTest, RegistersOwnPathsAndLeavesOtherVersionsAlone)
{
    const std::wstring otherVersion = TypeLibraryKey() + L"\\2.0";
    ASSERT_EQ(RegSetKeyValueW(HKEY_CLASSES_ROOT, otherVersion.c_str(), nullptr, REG_SZ, L"2.0", 8), 0);
    ASSERT_EQ(component.Register(), S_OK);
    for (const std::wstring& key :
         {L"CLSID\\" + IdText(__uuidof(Encoder)) + L"\\InprocServer32",
          TypeLibraryKey() + L"\\2.1\\409\\win32", TypeLibraryKey() + L"\\2.1\\0\\win32"}) {
        EXPECT_EQ(Registered(key), ComponentPath());
    }
    ASSERT_EQ(component.Unregister(), S_OK);
    ExpectUnknown();
    EXPECT_EQ(Registered(otherVersion), L"2.0");
    RegDeleteTreeW(HKEY_CLASSES_ROOT, TypeLibraryKey().c_str());
}

TEST_F(RegistrationTest, TakesBackWhatItHalfDid)
{
    // Below a key that lasts until the system goes down, no key can be made that stays: the last class, or
    // the type library, fails.
    for (const auto& [name, result] : {std::pair{std::wstring(L"ACG_MultiISO_TV.CError"), SELFREG_E_CLASS},
                                       {TypeLibraryKey() + L"\\2.1", SELFREG_E_TYPELIB}}) {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
        EXPECT_EQ(component.Register(), result);
        ExpectUnknown();
        EXPECT_EQ(Registered(TypeLibraryKey()), L"nothing");
    }
}

TEST(LibraryTest, StaysWhileAnObjectOrALockLives)
{
    {
        const LoadedComponent component;
        ASSERT_EQ(component.CanUnload(), S_OK);
        ComPtr<IClassFactory> factory = component.Factory(__uuidof(Encoder));
        EXPECT_EQ(component.CanUnload(), S_FALSE);
        EXPECT_EQ(factory->LockServer(TRUE), S_OK);
        EXPECT_EQ(factory.Reset(), 0U);
        EXPECT_EQ(component.CanUnload(), S_FALSE);
        EXPECT_EQ(component.Factory(__uuidof(Encoder))->LockServer(FALSE), S_OK);
        EXPECT_EQ(component.CanUnload(), S_OK);

        ComPtr<_Encoder> encoder = component.NewEncoder();
        Make(Way::ByName, *encoder.Get(), L"Parameters");
        ComPtr<_CError> error;
        EXPECT_EQ(encoder->get_LastError(error.GetAddressOf()), S_OK);
        EXPECT_EQ(encoder.Reset(), 0U);
        EXPECT_EQ(component.CanUnload(), S_FALSE);
        EXPECT_EQ(error.Reset(), 0U);
        EXPECT_EQ(component.CanUnload(), S_OK);
        EXPECT_EQ(TypeLibrary().Reset(), 0U); // it went with the objects
    }
    CoFreeUnusedLibrariesEx(0, 0); // where another test had the system load it
    EXPECT_EQ(GetModuleHandleW(L"ACG_MultiISO_TV.dll"), nullptr);
}

/// Of the heap that the component shares with this program.
size_t BytesInUse()
{
    _HEAPINFO entry{};
    size_t bytes = 0;
    while (_heapwalk(&entry) == _HEAPOK) {
        bytes += entry._useflag == _USEDENTRY ? entry._size : 0;
    }
    return bytes;
}

TEST(LibraryTest, RaisesWhereTheSharedRuntimeIsLoadedAndLeavesNothingOfItsOwn)
{
    const HMODULE runtime = LoadLibraryA(SHARED_RUNTIME);
    ASSERT_NE(runtime, nullptr);
    std::array<size_t, 3> bytes{};
    for (size_t& after : bytes) {
        {
            const LoadedComponent component;
            const ComPtr<_Encoder> encoder = component.NewEncoder();
            for (const Way way : {Way::BySlot, Way::ByName}) {
                EXPECT_EQ(Make(way, *encoder.Get(), L"ATRString").Result, -16);
                EXPECT_EQ(LONG{Make(way, *encoder.Get(), L"OpenEncoder", {-1L}).Value}, sceError);
            }
        }
        EXPECT_EQ(GetModuleHandleW(L"ACG_MultiISO_TV.dll"), nullptr);
        after = BytesInUse();
    }
    std::printf("%ld bytes left by an unloading\n", static_cast<long>(bytes[2] - bytes[1]));
    EXPECT_LT(bytes[2] - bytes[1], 1024U);
    FreeLibrary(runtime);
}

TEST(LibraryTest, FactoriesMakeBothClassesAndRefuseTheRest)
{
    const LoadedComponent component;
    const auto refuses = [](HRESULT expected, const auto& make) {
        void* object = &expected;
        EXPECT_EQ(make(&object), expected);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(make(nullptr), E_POINTER);
    };
    refuses(CLASS_E_CLASSNOTAVAILABLE, [&](void** object) {
        return component.GetClassObject(__uuidof(_Encoder), __uuidof(IClassFactory), object);
    });
    refuses(E_NOINTERFACE, [&](void** object) {
        return component.GetClassObject(__uuidof(Encoder), __uuidof(_Encoder), object);
    });
    for (const auto& [id, own] :
         {std::pair{__uuidof(Encoder), __uuidof(_Encoder)}, {__uuidof(CError), __uuidof(_CError)}}) {
        const ComPtr<IClassFactory> factory = component.Factory(id);
        ComPtr<IUnknown> made;
        EXPECT_EQ(factory->CreateInstance(nullptr, own, reinterpret_cast<void**>(made.GetAddressOf())), S_OK);
        refuses(CLASS_E_NOAGGREGATION,
                [&](void** object) { return factory->CreateInstance(made.Get(), own, object); });
        refuses(E_NOINTERFACE,
                [&](void** object) { return factory->CreateInstance(nullptr, __uuidof(IPersist), object); });
    }
}

TEST(TypeLibraryTest, KeepsTheOrderOfTheSlots)
{
    std::wstring slots;
    for (const Member& member : Members<_Encoder>()) {
        slots += (member.Kind == DISPATCH_PROPERTYPUT ? L"=" : L" ") + member.Name;
    }
    EXPECT_EQ(
        slots,
        L"=Parameters Parameters LastError EncoderState ReaderType ATRString CardType SerialNumberLength "
        L"GetInformation Configure OpenEncoder CloseEncoder ReadSerialNumber ReadDataBloc "
        L"ReadManufacturerCode ReadSectorTrailer WriteDataBloc WriteValueBloc WriteSectorTrailer "
        L"WriteBytesInBloc ReOpenEncoder");
}

} // namespace

} // namespace client

int main(int argc, char* argv[])
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    testing::InitGoogleTest(&argc, argv);
    if (FAILED(client::LoadedComponent().Register())) {
        return EXIT_FAILURE;
    }
    const int status = RUN_ALL_TESTS();
    return FAILED(client::LoadedComponent().Unregister()) ? EXIT_FAILURE : status;
}
