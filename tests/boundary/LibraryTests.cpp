// The DLL as a host's loader meets it: registration, factories, the type library, the version, and where it
// looks for the reader library.
#include "tests/boundary/Client.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <olectl.h>
#include <set>
#include <vector>

namespace client
{

namespace
{

namespace fs = std::filesystem;

fs::path OwnPath()
{
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
}

fs::path ComponentPath()
{
    return OwnPath().replace_filename(L"ACG_MultiISO_TV.dll");
}

/// Runs a program to its end.
DWORD RunProgram(std::wstring commandLine, const wchar_t* folder = nullptr)
{
    STARTUPINFOW start{.cb = sizeof(start)};
    PROCESS_INFORMATION process{};
    DWORD code = MAXDWORD;
    if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, folder, &start,
                       &process) != FALSE) {
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &code);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    return code;
}

/// The component as it is loaded by hand.
class LoadedComponent
{
public:
    explicit LoadedComponent(const fs::path& path = ComponentPath()) : m_module(LoadLibraryW(path.c_str())) {}
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

/// Every key and value below a key, a line each.
void List(HKEY key, const std::wstring& path, std::set<std::wstring>& lines)
{
    constexpr DWORD longest = 16384;
    static wchar_t name[longest];
    static wchar_t data[longest];
    lines.insert(path);
    DWORD length = longest;
    DWORD size = sizeof(data);
    for (DWORD at = 0; RegEnumValueW(key, at, name, &length, nullptr, nullptr, reinterpret_cast<BYTE*>(data),
                                     &size) == ERROR_SUCCESS;
         ++at) {
        lines.insert(path + L'|' + name + L'=' + std::wstring(data, size / sizeof(wchar_t)));
        length = longest;
        size = sizeof(data);
    }
    length = longest;
    for (DWORD at = 0;
         RegEnumKeyExW(key, at, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS; ++at) {
        HKEY sub = nullptr;
        if (RegOpenKeyExW(key, name, 0, KEY_READ, &sub) == ERROR_SUCCESS) {
            List(sub, path + L'\\' + name, lines);
            RegCloseKey(sub);
        }
        length = longest;
    }
}

std::set<std::wstring> Registry()
{
    std::set<std::wstring> lines;
    List(HKEY_CLASSES_ROOT, L"", lines);
    return lines;
}

/// What stands in one list alone.
std::vector<std::wstring> Difference(const std::set<std::wstring>& one, const std::set<std::wstring>& other)
{
    std::vector<std::wstring> lines;
    std::ranges::set_symmetric_difference(one, other, std::back_inserter(lines));
    return lines;
}

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

/// Before this program has registered anything.
std::set<std::wstring> UntouchedRegistry;

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
    ASSERT_EQ(RunProgram(L"regsvr32 /s \"" + path + L"\""), 0U);
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

    ASSERT_EQ(RunProgram(L"regsvr32 /u /s \"" + path + L"\""), 0U);
    EXPECT_EQ(Difference(Registry(), UntouchedRegistry), std::vector<std::wstring>());
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
        EXPECT_EQ(Difference(Registry(), UntouchedRegistry), std::vector<std::wstring>());
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

TEST(LibraryTest, TakesReaderLibraryFromItsOwnFolderAndNeverFromTheCurrentOne)
{
    constexpr DWORD notFound = 53;
    constexpr DWORD lacksFunction = 453;
    const fs::path folder = fs::temp_directory_path() / (L"acg" + std::to_wstring(GetCurrentProcessId()));
    const fs::path own = folder / L"own" / ComponentPath().filename();
    const fs::path hosts = folder / L"host" / L"client.exe";
    const fs::path current = folder / L"current" / L"ACGReader330.dll";
    for (const fs::path& file : {own, hosts, current}) {
        fs::create_directories(file.parent_path());
    }
    fs::copy(ComponentPath(), own);
    fs::copy(OwnPath(), hosts);
    // A library of that name, but without the functions: a call of one tells whether it was loaded.
    fs::copy(ComponentPath(), current);
    const std::wstring client = hosts.wstring() + L" --number-of-a-failed-call " + own.wstring();
    EXPECT_EQ(RunProgram(client, current.parent_path().c_str()), notFound);
    fs::copy(ComponentPath(), own.parent_path() / current.filename());
    EXPECT_EQ(RunProgram(client, current.parent_path().c_str()), lacksFunction);
    fs::remove_all(folder);
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

// The type library as text, the members in the order of their slots.

std::wstring NameOf(ITypeInfo& info, MEMBERID member = MEMBERID_NIL)
{
    BSTR name = nullptr;
    EXPECT_EQ(info.GetDocumentation(member, &name, nullptr, nullptr, nullptr), S_OK);
    return TakeText(name);
}

std::wstring TypeName(ITypeInfo& info, const TYPEDESC& type)
{
    if (type.vt == VT_PTR) {
        return TypeName(info, *type.lptdesc) + L"*";
    }
    if (type.vt == VT_USERDEFINED) {
        ComPtr<ITypeInfo> named;
        EXPECT_EQ(info.GetRefTypeInfo(type.hreftype, named.GetAddressOf()), S_OK);
        return NameOf(*named.Get());
    }
    return type.vt == VT_I4        ? L"long"
           : type.vt == VT_UI1     ? L"byte"
           : type.vt == VT_BSTR    ? L"text"
           : type.vt == VT_VARIANT ? L"variant"
                                   : L"type " + std::to_wstring(type.vt);
}

std::wstring MemberText(ITypeInfo& info, const FUNCDESC& function)
{
    BSTR names[20] = {};
    UINT count = 0;
    EXPECT_EQ(info.GetNames(function.memid, names, static_cast<UINT>(std::size(names)), &count), S_OK);
    std::wstring line = function.invkind == INVOKE_PROPERTYPUT   ? L"  set "
                        : function.invkind == INVOKE_PROPERTYGET ? L"  get "
                                                                 : L"  ";
    line += TakeText(names[0]);
    for (UINT at = 0; at < static_cast<UINT>(function.cParams); ++at) {
        const ELEMDESC& parameter = function.lprgelemdescParam[at];
        const USHORT flags = parameter.paramdesc.wParamFlags;
        const std::wstring name = names[at + 1] != nullptr ? TakeText(names[at + 1]) : L"";
        if ((flags & PARAMFLAG_FRETVAL) != 0) {
            line += L" -> " + TypeName(info, parameter.tdesc);
            continue;
        }
        line += at == 0 ? L": " : L", ";
        line += (flags & PARAMFLAG_FIN) != 0 ? L"in " : L"";
        line += (flags & PARAMFLAG_FOUT) != 0 ? L"out " : L"";
        line += (flags & PARAMFLAG_FOPT) != 0 ? L"optional " : L"";
        line += TypeName(info, parameter.tdesc);
        line += function.invkind == INVOKE_FUNC ? L" " + name : L"";
    }
    return line + L"\n";
}

std::wstring TypeText(ComPtr<ITypeInfo> info)
{
    constexpr const wchar_t* kinds[] = {L"enum",     L"record",  L"module", L"interface",
                                        L"dispatch", L"coclass", L"alias",  L"union"};
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
    std::wstring text = kinds[attributes->typekind] + (L" " + NameOf(*info.Get())) + L" " +
                        std::to_wstring(attributes->wMajorVerNum) + L"." +
                        std::to_wstring(attributes->wMinorVerNum);
    const auto flag = [&](WORD bit, const wchar_t* name) {
        text += (attributes->wTypeFlags & bit) != 0 ? name : L"";
    };
    flag(TYPEFLAG_FHIDDEN, L" hidden");
    flag(TYPEFLAG_FDUAL, L" dual");
    flag(TYPEFLAG_FCANCREATE, L" creatable");
    HREFTYPE reference = 0;
    if (attributes->typekind == TKIND_COCLASS) {
        ComPtr<ITypeInfo> own;
        EXPECT_EQ(info->GetRefTypeOfImplType(0, &reference), S_OK);
        EXPECT_EQ(info->GetRefTypeInfo(reference, own.GetAddressOf()), S_OK);
        text += L" " + NameOf(*own.Get());
    }
    for (UINT at = 0; at < attributes->cVars; ++at) {
        VARDESC* value = nullptr;
        EXPECT_EQ(info->GetVarDesc(at, &value), S_OK);
        text += (at % 4 == 0 ? L"\n  " : L", ") + NameOf(*info.Get(), value->memid) + L" " +
                std::to_wstring(V_I4(value->lpvarValue));
        info->ReleaseVarDesc(value);
    }
    text += L"\n";
    const bool isDual = (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0;
    info->ReleaseTypeAttr(attributes);
    if (isDual) {
        ComPtr<ITypeInfo> slots;
        EXPECT_EQ(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
        EXPECT_EQ(info->GetRefTypeInfo(reference, slots.GetAddressOf()), S_OK);
        FUNCDESC* function = nullptr;
        SHORT slot = 7; // behind those of IDispatch
        for (UINT at = 0; SUCCEEDED(slots->GetFuncDesc(at, &function)); ++at) {
            EXPECT_EQ(function->oVft, slot++ * static_cast<SHORT>(sizeof(void*)));
            text += MemberText(*slots.Get(), *function);
            slots->ReleaseFuncDesc(function);
        }
    }
    return text;
}

TEST(TypeLibraryTest, SpellsTheInterfaceOut)
{
    const ComPtr<ITypeLib> library = TypeLibrary();
    BSTR name = nullptr;
    BSTR description = nullptr;
    EXPECT_EQ(library->GetDocumentation(-1, &name, &description, nullptr, nullptr), S_OK);
    EXPECT_EQ(TakeText(name), L"ACG_MultiISO_TV");
    EXPECT_EQ(TakeText(description), L"Tarvello encoding component: ACG Multi-ISO");
    const TLIBATTR attributes = AttributesOf(*library.Get());
    EXPECT_EQ(attributes.wMajorVerNum, 2);
    EXPECT_EQ(attributes.wMinorVerNum, 1);
    EXPECT_EQ(attributes.lcid, 0x409U);

    std::wstring types;
    for (UINT at = 0; at < library->GetTypeInfoCount(); ++at) {
        ComPtr<ITypeInfo> info;
        EXPECT_EQ(library->GetTypeInfo(at, info.GetAddressOf()), S_OK);
        types += TypeText(info);
    }
    EXPECT_EQ(types, LR"(enum sceReturnCode 0.0
  sceSuccess 0, sceCanceled 1, sceError 2
enum sceEncoderState 0.0
  sceUnknown 0, sceClosed 1, sceOpened 2, sceReady 3
enum sceCardTypes 0.0
  sceUnhandled 0, sceUnknownType 1, sceMifare1K 17, sceMifare4K 18
  sceMifareUltralight 33, sceDESFire 49, sceRfid125KHz 65, scePicoPass2KS 81
enum SCBS_SecurityLevelEnum 0.0
  scbs_A_Nothing 0, scbs_A_Read 1, scbs_A_Write 2, scbs_A_ReadWrite 3
  scbs_B_Nothing 0, scbs_B_Read 4, scbs_B_Write 8, scbs_B_ReadWrite 12
enum SCSS_SecurityLevelEnum 0.0
  scss_A_Nothing 0, scss_A_WriteKeys 1, scss_A_WriteConditions 2, scss_A_WriteKeysConditions 3
  scss_B_Nothing 0, scss_B_WriteKeys 4, scss_B_WriteConditions 8, scss_B_WriteKeysConditions 12
dispatch _CError 1.0 hidden dual
  get Number -> long*
  set Number: in long
  get Description -> text*
  set Description: in text
  get LastDllError -> long*
  set LastDllError: in long
  get ComFunction -> text*
  set ComFunction: in text
  get RdrCommand -> text*
  set RdrCommand: in text
  get RdrRetCode -> text*
  set RdrRetCode: in text
dispatch _Encoder 1.1 hidden dual
  set Parameters: in text
  get Parameters -> text*
  get LastError -> _CError**
  get EncoderState -> sceEncoderState*
  get ReaderType -> text*
  get ATRString -> text*
  get CardType -> sceCardTypes*
  get SerialNumberLength -> long*
  GetInformation -> text*
  Configure: in text Language -> sceReturnCode*
  OpenEncoder: in long Handle -> sceReturnCode*
  CloseEncoder -> sceReturnCode*
  ReadSerialNumber: in out text* SerialNumber -> sceReturnCode*
  ReadDataBloc: in long BlocNumber, in text key, in byte KeyType, in out text* BlocContents -> sceReturnCode*
  ReadManufacturerCode: in text key, in byte KeyType, in out long* SerialNumber, in out byte* CheckSum, in out text* ManufacturerInfo -> sceReturnCode*
  ReadSectorTrailer: in long SectorNumber, in text key, in byte KeyType, in out byte* KeysUsed, in out SCBS_SecurityLevelEnum* Security0, in out SCBS_SecurityLevelEnum* Security1, in out SCBS_SecurityLevelEnum* Security2, in out SCSS_SecurityLevelEnum* Conditions, in out byte* BX -> sceReturnCode*
  WriteDataBloc: in long BlocNumber, in text key, in byte KeyType, in out text* BlocContents -> sceReturnCode*
  WriteValueBloc: in long BlocNumber, in text key, in byte KeyType, in long value -> sceReturnCode*
  WriteSectorTrailer: in long SectorNumber, in text key, in byte KeyType, in text KeyA, in text KeyB, in byte KeysToUse, in SCBS_SecurityLevelEnum Security0, in SCBS_SecurityLevelEnum Security1, in SCBS_SecurityLevelEnum Security2, in SCSS_SecurityLevelEnum Conditions, in out optional variant* BX -> sceReturnCode*
  WriteBytesInBloc: in long BlocNumber, in text key, in byte KeyType, in byte FromByte, in byte ToByte, in out text* BlocContents -> sceReturnCode*
  ReOpenEncoder
coclass Encoder 1.1 creatable _Encoder
coclass CError 1.0 creatable _CError
)");
}

/// What the record holds when the first call of the reader library has failed as a call.
int NumberOfAFailedCall(const char* componentPath)
{
    const LoadedComponent component(componentPath);
    const ComPtr<_Encoder> encoder = component.NewEncoder();
    encoder->ReOpenEncoder();
    ComPtr<_CError> error;
    encoder->get_LastError(error.GetAddressOf());
    LONG number = 0;
    error->get_Number(&number);
    return number;
}

} // namespace

} // namespace client

/// With --number-of-a-failed-call and a component it is a client in a process of its own, and gives that
/// number as its status.
int main(int argc, char* argv[])
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (argc > 2 && argv[1] == std::string("--number-of-a-failed-call")) {
        return client::NumberOfAFailedCall(argv[2]);
    }
    testing::InitGoogleTest(&argc, argv);
    client::UntouchedRegistry = client::Registry();
    if (FAILED(client::LoadedComponent().Register())) {
        return EXIT_FAILURE;
    }
    const int status = RUN_ALL_TESTS();
    return FAILED(client::LoadedComponent().Unregister()) ? EXIT_FAILURE : status;
}
