// The DLL as a host's loader meets it: registration, factories, the type library and the version.
#include "tests/boundary/Client.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <olectl.h>

namespace client
{

namespace
{

std::filesystem::path ComponentPath()
{
    wchar_t path[MAX_PATH];
    const std::filesystem::path own = std::wstring(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
    return own.parent_path() / L"ACG_MultiISO_TV.dll";
}

/// The component as it is loaded by hand.
class LoadedComponent
{
public:
    LoadedComponent() : m_module(LoadLibraryW(ComponentPath().c_str())) {}
    ~LoadedComponent() { FreeLibrary(m_module); }
    LoadedComponent(const LoadedComponent&) = delete;
    LoadedComponent& operator=(const LoadedComponent&) = delete;

    [[nodiscard]] HRESULT Register() const
    {
        return Find<HRESULT(STDMETHODCALLTYPE*)()>("DllRegisterServer")();
    }
    [[nodiscard]] HRESULT Unregister() const
    {
        return Find<HRESULT(STDMETHODCALLTYPE*)()>("DllUnregisterServer")();
    }
    [[nodiscard]] HRESULT CanUnload() const
    {
        return Find<HRESULT(STDMETHODCALLTYPE*)()>("DllCanUnloadNow")();
    }
    HRESULT GetClassObject(REFCLSID id, REFIID wanted, void** object) const
    {
        using Exported = HRESULT(STDMETHODCALLTYPE*)(REFCLSID, REFIID, void**);
        return Find<Exported>("DllGetClassObject")(id, wanted, object);
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
    template <class Function>
    [[nodiscard]] Function Find(const char* name) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(m_module, name)));
    }

    HMODULE m_module;
};

std::wstring Registered(const std::wstring& key, const wchar_t* name = nullptr)
{
    wchar_t text[MAX_PATH] = L"nothing";
    DWORD size = sizeof(text);
    RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
    return text;
}

std::wstring TextOf(const GUID& id)
{
    wchar_t text[40];
    StringFromGUID2(id, text, static_cast<int>(std::size(text)));
    return text;
}

ComPtr<ITypeLib> TypeLibrary()
{
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadTypeLibEx(ComponentPath().c_str(), REGKIND_NONE, library.GetAddressOf()), S_OK);
    return library;
}

TLIBATTR AttributesOf(ITypeLib& library)
{
    TLIBATTR* attributes = nullptr;
    EXPECT_EQ(library.GetLibAttr(&attributes), S_OK);
    const TLIBATTR copy = *attributes;
    library.ReleaseTLibAttr(attributes);
    return copy;
}

/// Nothing of the component is left. (What else a registration might leave, the test of the package looks
/// for.)
bool IsUnknown()
{
    const std::wstring keys[] = {EncoderName,
                                 ErrorName,
                                 L"CLSID\\" + TextOf(__uuidof(Encoder)),
                                 L"CLSID\\" + TextOf(__uuidof(CError)),
                                 L"Interface\\" + TextOf(__uuidof(_Encoder)),
                                 L"Interface\\" + TextOf(__uuidof(_CError)),
                                 L"TypeLib\\" + TextOf(AttributesOf(*TypeLibrary().Get()).guid)};
    return std::ranges::all_of(keys, [](const std::wstring& key) {
        HKEY found = nullptr;
        const bool isThere = RegOpenKeyW(HKEY_CLASSES_ROOT, key.c_str(), &found) == ERROR_SUCCESS;
        RegCloseKey(found);
        return !isThere;
    });
}

/// The tests of this suite register for themselves.
class RegistrationTest : public testing::Test
{
protected:
    RegistrationTest() { EXPECT_EQ(component.Unregister(), S_OK); }
    ~RegistrationTest() override { EXPECT_EQ(component.Register(), S_OK); }

    const LoadedComponent component;
};

TEST_F(RegistrationTest, MakesEverythingKnownAndLeavesNothingBehind)
{
    const std::wstring path = ComponentPath().wstring();
    ASSERT_EQ(component.Register(), S_OK);
    const GUID libraryId = AttributesOf(*TypeLibrary().Get()).guid;
    for (const auto& [name, id] :
         {std::pair{EncoderName, __uuidof(Encoder)}, {ErrorName, __uuidof(CError)}}) {
        const std::wstring key = L"CLSID\\" + TextOf(id);
        EXPECT_EQ(Registered(std::wstring(name) + L"\\CLSID"), TextOf(id));
        EXPECT_EQ(Registered(key + L"\\InprocServer32"), path);
        EXPECT_EQ(Registered(key + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
        EXPECT_EQ(Registered(key + L"\\ProgID"), name);
        EXPECT_EQ(Registered(key + L"\\TypeLib"), TextOf(libraryId));
    }
    for (const IID& id : {__uuidof(_Encoder), __uuidof(_CError)}) {
        EXPECT_EQ(Registered(L"Interface\\" + TextOf(id) + L"\\TypeLib"), TextOf(libraryId));
    }
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(libraryId, 2, 1, 0x409, library.GetAddressOf()), S_OK);

    ASSERT_EQ(component.Unregister(), S_OK);
    EXPECT_TRUE(IsUnknown());
}

TEST_F(RegistrationTest, TakesBackWhatItHalfDid)
{
    // Below a key that lasts until the system goes down, no key can be made that stays: the last class, or
    // the type library, fails.
    const std::wstring library = TextOf(AttributesOf(*TypeLibrary().Get()).guid);
    const std::pair<std::wstring, HRESULT> cases[] = {{ErrorName, SELFREG_E_CLASS},
                                                      {L"TypeLib\\" + library + L"\\2.1", SELFREG_E_TYPELIB}};
    for (const auto& [name, result] : cases) {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, name.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
        EXPECT_EQ(component.Register(), result);
        EXPECT_TRUE(IsUnknown());
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
        Text parameters;
        EXPECT_EQ(GetParameters(Way::ByName, *encoder.Get(), parameters.Variable()), Outcome());
        ComPtr<_CError> error;
        EXPECT_EQ(encoder->get_LastError(error.GetAddressOf()), S_OK);
        EXPECT_EQ(encoder.Reset(), 0U);
        EXPECT_EQ(component.CanUnload(), S_FALSE);
        EXPECT_EQ(error.Reset(), 0U);
        EXPECT_EQ(component.CanUnload(), S_OK);
        EXPECT_EQ(TypeLibrary().Reset(), 0U); // the component has let go of it
    }
    CoFreeUnusedLibrariesEx(0, 0); // where another test had the system load it
    EXPECT_EQ(GetModuleHandleW(L"ACG_MultiISO_TV.dll"), nullptr);
}

TEST(LibraryTest, FactoriesMakeBothClassesAndRefuseTheRest)
{
    const LoadedComponent component;
    const auto refuses = [](HRESULT expected, const auto& make) {
        auto* object = reinterpret_cast<void*>(Poison);
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

TEST(LibraryTest, VersionIsThatOfTheInformation)
{
    BYTE resource[4096];
    ASSERT_NE(GetFileVersionInfoW(ComponentPath().c_str(), 0, sizeof(resource), resource), FALSE);
    void* found = nullptr;
    UINT size = 0;
    ASSERT_NE(VerQueryValueW(resource, L"\\", &found, &size), FALSE);
    const auto& version = *static_cast<VS_FIXEDFILEINFO*>(found);
    const std::wstring text = std::to_wstring(HIWORD(version.dwFileVersionMS)) + L"." +
                              std::to_wstring(LOWORD(version.dwFileVersionMS)) + L"." +
                              std::to_wstring(HIWORD(version.dwFileVersionLS));
    const LoadedComponent component;
    Text information;
    EXPECT_EQ(component.NewEncoder()->GetInformation(information.Variable()), S_OK);
    EXPECT_NE(information.Characters().find(L"|" + text + L"|"), std::wstring::npos);
}

/// The names of an interface's members, in the order of their slots.
std::wstring Slots(REFIID id)
{
    ComPtr<ITypeInfo> named;
    ComPtr<ITypeInfo> slots;
    HREFTYPE reference = 0;
    EXPECT_EQ(TypeLibrary()->GetTypeInfoOfGuid(id, named.GetAddressOf()), S_OK);
    EXPECT_EQ(named->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    EXPECT_EQ(named->GetRefTypeInfo(reference, slots.GetAddressOf()), S_OK);
    std::wstring names;
    FUNCDESC* function = nullptr;
    for (SHORT at = 0; SUCCEEDED(slots->GetFuncDesc(static_cast<UINT>(at), &function)); ++at) {
        constexpr SHORT ofDispatch = 7;
        EXPECT_EQ(function->oVft, (ofDispatch + at) * static_cast<SHORT>(sizeof(void*)));
        BSTR name = nullptr;
        UINT count = 0;
        EXPECT_EQ(slots->GetNames(function->memid, &name, 1, &count), S_OK);
        names += (function->invkind == INVOKE_PROPERTYPUT ? L"=" : L" ") + TakeText(name);
        slots->ReleaseFuncDesc(function);
    }
    return names;
}

TEST(TypeLibraryTest, KeepsTheOrderOfTheSlots)
{
    EXPECT_EQ(
        Slots(__uuidof(_Encoder)),
        L"=Parameters Parameters LastError EncoderState ReaderType ATRString CardType SerialNumberLength "
        L"GetInformation Configure OpenEncoder CloseEncoder ReadSerialNumber ReadDataBloc "
        L"ReadManufacturerCode ReadSectorTrailer WriteDataBloc WriteValueBloc WriteSectorTrailer "
        L"WriteBytesInBloc ReOpenEncoder");
    EXPECT_EQ(Slots(__uuidof(_CError)),
              L" Number=Number Description=Description LastDllError=LastDllError ComFunction=ComFunction "
              L"RdrCommand=RdrCommand RdrRetCode=RdrRetCode");
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
