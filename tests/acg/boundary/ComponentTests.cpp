// The component as a client meets it, by slot, by name and as a script, on the simulated reader.
#include "tests/acg/boundary/Client.h"

#include <olectl.h>

namespace client
{

/// On a card of its own, as cards last as long as the process, with that check sum.
void ExpectOperations(Way way, const wchar_t* serial, BYTE card)
{
    const Ptr<_Encoder> encoder(__uuidof(Encoder));
    const Ptr<_CError> record = Call(way, *encoder, L"LastError").Value;
    Call(way, *encoder, L"Parameters", {(std::wstring(L"Device=com1,uid=") + serial).c_str()});
    EXPECT_NE(AsText(Call(way, *encoder, L"Parameters").Value).find(serial), std::wstring::npos);
    const std::wstring information = AsText(Call(way, *encoder, L"GetInformation").Value);
    ASSERT_TRUE(information.starts_with(L"Tarvello|ACG Multi-ISO|7.1.1947|1|"));
    constexpr const wchar_t* key = L"FFFFFFFFFFFF";
    constexpr const wchar_t* a = L"A0A1A2A3A4A5";
    constexpr const wchar_t* b = L"B0B1B2B3B4B5";
    constexpr LONG keyA = 1;
    constexpr LONG keyB = 2;
    constexpr LONG both = 2;
    constexpr LONG read = scbs_A_Read + scbs_B_Read;
    constexpr LONG all = scbs_A_ReadWrite + scbs_B_ReadWrite;
    constexpr LONG trailer = scss_B_WriteKeysConditions;
    const wchar_t* const block = L"000102030405060708090A0B0C0DAABB";
    _variant_t byte(16L);
    VARIANTARG once = ReferenceTo(VT_VARIANT, &byte);
    VARIANTARG twice = ReferenceTo(VT_VARIANT, &once);
    const _variant_t thrice(ReferenceTo(VT_VARIANT, &twice));
    const struct {
        const wchar_t* Name;
        std::vector<_variant_t> Given;
        std::vector<_variant_t> Expected; ///< from the last argument backwards
        LONG Number = 0;                  ///< of the record
        const wchar_t* Source = nullptr;  ///< if it is raised
    } rows[] = {
        {L"ReaderType", {}, {}, -1, L"ACG_MultiISO_TV.Encoder"},
        {L"ATRString", {}, {}, -16, L""},
        {L"CardType", {}, {}, -16, L""},
        {L"SerialNumberLength", {}, {}, -16, L""},
        {L"ReadDataBloc", {5L, key, keyA, L"kept"}, {L"kept"}, -1},
        {L"OpenEncoder", {std::stol(information.substr(34))}, {}},
        {L"ReadSerialNumber", {L""}, {serial}},
        {L"ReadManufacturerCode", {key, keyA, 0L, 0L, L""}, {L"08040053494D554C415445", card, LONG{card}}},
        {L"WriteDataBloc", {5L, key, keyA, L" 000102030405060708090a0b0c0daabb "}, {block}},
        {L"WriteBytesInBloc", {5L, key, keyA, 10L, 11L, L"FEFF"}, {L"00010203040506070809FEFF0C0DAABB"}},
        {L"WriteBytesInBloc", {5L, key, keyA, 10L, 11L, L"0A0B"}, {block}},
        {L"ReadDataBloc", {5L, key, keyA, L""}, {block}},
        {L"WriteValueBloc", {6L, key, keyA, -2L}, {}},
        {L"WriteSectorTrailer", {2L, key, keyA, a, b, both, read, all, all, trailer, L"16"}, {L"16"}},
        {L"ReadSectorTrailer",
         {2L, a, keyA, 0L, 0L, 0L, 0L, 0L, 0L},
         {BYTE(16), trailer, all, all, read, BYTE(both)}},
        {L"WriteSectorTrailer", {2L, b, keyB, a, b, both, read, all, all, trailer, 256L}, {256L}, -15},
        {L"WriteSectorTrailer", {2L, b, keyB, a, b, both, read, all, all, trailer, thrice}, {}, -15},
        {L"WriteSectorTrailer", {2L, b, keyB, a, b, both, read, all, all, trailer}, {}},
        {L"ReadSectorTrailer", {2L, a, keyA, 0L, 0L, 0L, 0L, 0L, 0L}, {BYTE(16)}},
        {L"CloseEncoder", {}, {}},
    };
    for (const auto& [name, given, expected, number, source] : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(name)) + std::to_string(card));
        const Call call(way, *encoder, name, given);
        EXPECT_EQ(AsText(Call(way, *record, L"Number").Value), std::to_wstring(number));
        EXPECT_EQ(AsText(Call(way, *record, L"ComFunction").Value), name);
        EXPECT_EQ(call.Result, source == nullptr ? S_OK : number);
        EXPECT_STREQ(call.Raised.bstrSource, source);
        EXPECT_TRUE(source == nullptr ||
                    AsText(Call(way, *record, L"Description").Value) == call.Raised.bstrDescription);
        EXPECT_EQ(_wtol(AsText(call.Value).c_str()), source != nullptr || number == 0 ? 0 : sceError);
        for (size_t at = 0; at < expected.size(); ++at) {
            EXPECT_EQ(AsText(call.Arguments[given.size() - 1 - at]), AsText(expected[at])) << at;
        }
    }
    EXPECT_EQ(Call(way, *encoder, L"ReOpenEncoder").Result, S_OK);
    EXPECT_EQ(AsText(Call(way, *encoder, L"EncoderState").Value), AsText(LONG{sceReady}));
}

TEST(EncoderTest, OperationsAndRaisedFailuresComeThroughInEveryWay)
{
    ExpectOperations(Way::BySlot, L"00000011", 0x11);
    ExpectOperations(Way::ByName, L"00000012", 0x12);
    ExpectOperations(Way::AsScript, L"00000013", 0x13);
    ExpectOperations(Way::Generated, L"00000015", 0x15);
}

TEST(RecordTest, FieldsHoldWhatIsWritten)
{
    const Ptr<_Encoder> encoder(__uuidof(Encoder));
    const Ptr<_CError> record = Call(Way::ByName, *encoder, L"LastError").Value;
    const _bstr_t withNul(SysAllocStringLen(L"1\0b", 3), false);
    for (const Member& member : Members<_CError>()) {
        if (member.Kind == DISPATCH_PROPERTYPUT) {
            const _variant_t value = member.Types[0] == VT_BSTR ? _variant_t(withNul) : _variant_t(-7L);
            EXPECT_EQ(Call(Way::ByName, *record, member, {value}).Result, S_OK);
            EXPECT_EQ(AsText(Call(Way::BySlot, *record, member.Name.c_str()).Value), AsText(value));
        }
    }
    EXPECT_EQ(record->put_ComFunction(nullptr), S_OK); // as empty text
}

/// By slot, null in place of a variable; by name, what can't be converted. The encoder is closed: operations
/// come to their end.
void ExpectRefusals(IDispatch& object, const Member& member)
{
    SCOPED_TRACE(testing::PrintToString(member.Name));
    const std::vector<_variant_t> arguments(member.Inputs, _variant_t(1L));
    for (size_t at = 0; at < member.Types.size(); ++at) {
        const VARTYPE plain = Plain(member.Types[at]);
        if (plain != member.Types[at] && plain != VT_VARIANT) {
            Call call(Way::BySlot, object, member, arguments);
            V_BYREF(&call.Passed[at]) = nullptr;
            EXPECT_EQ(call.Repeat(), E_POINTER) << at;
            V_VT(&call.Value) = VT_EMPTY;
        }
        _variant_t variable = 1.0;
        VARIANTARG once = ReferenceTo(VT_VARIANT, &variable);
        VARIANTARG twice = ReferenceTo(VT_VARIANT, &once);
        SAFEARRAY* array = nullptr;
        const std::pair<VARIANTARG, HRESULT> rows[] = {
            {twice, S_OK},
            {ReferenceTo(VT_VARIANT, &twice), DISP_E_TYPEMISMATCH},
            {_variant_t(), S_OK},
            {ReferenceTo(VT_ARRAY | VT_I4, &array), DISP_E_TYPEMISMATCH},
            {ReferenceTo(VT_VARIANT, nullptr), E_POINTER},
            {ReferenceTo(plain, nullptr), E_POINTER},
            {ReferenceTo(VT_I2, &variable), plain == member.Types[at] ? S_OK : DISP_E_TYPEMISMATCH},
            {_variant_t(DISP_E_PARAMNOTFOUND, VT_ERROR), DISP_E_PARAMNOTOPTIONAL},
            {_variant_t(3e11), plain == VT_BSTR ? S_OK : DISP_E_OVERFLOW}};
        for (size_t row = 0; row < std::size(rows) && at < member.Inputs && plain != VT_VARIANT; ++row) {
            const size_t position = member.Inputs - 1 - at;
            Call call(Way::ByName, object, member, arguments);
            call.Passed[position] = rows[row].first;
            EXPECT_EQ(call.Repeat(), rows[row].second) << row;
            EXPECT_EQ(call.BadArgument, FAILED(call.Result) ? position : MAXUINT);
        }
    }
}

TEST(EveryMemberTest, KeepsItsSlotAndRefusesBadArguments)
{
    const Ptr<_Encoder> encoder(__uuidof(Encoder));
    std::wstring slots;
    for (const Member& member : Members<_Encoder>()) {
        slots += (member.Kind == DISPATCH_PROPERTYPUT ? L"=" : L" ") + member.Name;
        if (member.Name != L"Configure") { // which waits for a person
            ExpectRefusals(*encoder, member);
        }
    }
    const Ptr<_CError> record = Call(Way::ByName, *encoder, L"LastError").Value;
    for (const Member& member : Members<_CError>()) {
        ExpectRefusals(*record, member);
    }
    EXPECT_EQ(
        slots,
        L"=Parameters Parameters LastError EncoderState ReaderType ATRString CardType SerialNumberLength "
        L"GetInformation Configure OpenEncoder CloseEncoder ReadSerialNumber ReadDataBloc "
        L"ReadManufacturerCode ReadSectorTrailer WriteDataBloc WriteValueBloc WriteSectorTrailer "
        L"WriteBytesInBloc ReOpenEncoder");
}

TEST(ObjectTest, TakesNamedArgumentsAndRefusesIncompleteLists)
{
    const Ptr<_Encoder> encoder(__uuidof(Encoder));
    DISPID names[] = {2, 3}; // the key's type and the contents
    DISPID unknown[] = {2, 99};
    _variant_t contents(12.0);
    VARIANTARG given[5] = {_variant_t(1L), ReferenceTo(VT_VARIANT, &contents)};
    const std::pair<DISPPARAMS, HRESULT> rows[] = {{{given, names, 4, 2}, S_OK},
                                                   {{given, unknown, 4, 2}, DISP_E_PARAMNOTFOUND},
                                                   {{nullptr, nullptr, 4, 0}, E_INVALIDARG},
                                                   {{given, nullptr, 4, 2}, E_INVALIDARG},
                                                   {{given, names, 1, 2}, E_INVALIDARG},
                                                   {{given, nullptr, 3, 0}, DISP_E_BADPARAMCOUNT},
                                                   {{given, nullptr, 5, 0}, DISP_E_BADPARAMCOUNT}};
    for (auto [list, result] : rows) {
        UINT badArgument = MAXUINT;
        EXPECT_EQ(encoder->Invoke(/*ReadDataBloc*/ 13, IID{}, 0, DISPATCH_METHOD, &list, nullptr, nullptr,
                                  &badArgument),
                  result);
        EXPECT_EQ(badArgument, result == DISP_E_PARAMNOTFOUND ? 1 : MAXUINT);
    }
    EXPECT_EQ(V_VT(&contents), VT_BSTR); // converted, though not read, as the encoder is closed
    EXPECT_EQ(Ptr<ISupportErrorInfo>(encoder)->InterfaceSupportsErrorInfo(__uuidof(_Encoder)), S_OK);
    EXPECT_EQ(Ptr<ISupportErrorInfo>(encoder)->InterfaceSupportsErrorInfo(__uuidof(_CError)), S_FALSE);
}

// The timer comes while the dialog is open, on its thread, and releases the last reference.
_Encoder* InConfigure = nullptr;

void CALLBACK ReleaseAndCancel(HWND /*window*/, UINT /*message*/, UINT_PTR timer, DWORD /*time*/)
{
    if (const HWND dialog = FindWindowW(nullptr, L"Configuration de l'encodeur ACG"); dialog != nullptr) {
        KillTimer(nullptr, timer);
        EXPECT_GT(InConfigure->Release(), 0U);
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
}

TEST(ObjectTest, OutlivesItsDialogAndItsRecordOutlivesIt)
{
    Ptr<_Encoder> encoder(__uuidof(Encoder));
    Ptr<_CError> record = Call(Way::ByName, *encoder, L"LastError").Value;
    InConfigure = encoder.Detach();
    ASSERT_NE(SetTimer(nullptr, 0, /*milliseconds*/ 20, &ReleaseAndCancel), 0U);
    EXPECT_EQ(LONG{Call(Way::BySlot, *InConfigure, L"Configure", {L"francais"}).Value}, sceCanceled);
    EXPECT_EQ(record.Detach()->Release(), 0U); // the Encoder, which held it too, has gone
}

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
    Ptr<IClassFactory> factory = FactoryOf(__uuidof(Encoder));
    EXPECT_EQ(canUnload(), S_FALSE);
    factory->LockServer(TRUE);
    factory.Release();
    EXPECT_EQ(canUnload(), S_FALSE);
    FactoryOf(__uuidof(Encoder))->LockServer(FALSE);
    EXPECT_EQ(canUnload(), S_OK);
    Ptr<_CError> record = Call(Way::ByName, *Ptr<_Encoder>(__uuidof(Encoder)), L"LastError").Value;
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
        refuses(CLASS_E_NOAGGREGATION, [&](void** object) {
            return factory->CreateInstance(Ptr<IUnknown>(id), __uuidof(IUnknown), object);
        });
        refuses(E_NOINTERFACE,
                [&](void** object) { return factory->CreateInstance(nullptr, __uuidof(IPersist), object); });
    }
}

DWORD WINAPI RunApartment(void* /*unused*/)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    ExpectOperations(Way::ByName, L"00000014", 0x14); // made on a thread of the system's
    CoUninitialize();
    return 0;
}

// The last test, as that thread keeps the component loaded.
TEST(ApartmentTest, CanBeUsedFromAnotherApartment)
{
    const HANDLE thread = CreateThread(nullptr, 0, &RunApartment, nullptr, 0, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    CloseHandle(thread);
}

} // namespace client

int main(int argc, char* argv[])
{
    LoadLibraryA(SHARED_RUNTIME); // the component raises in a process that has it, too
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    testing::InitGoogleTest(&argc, argv);
    const bool registers = argc == 1; // with an argument a manifest is there
    if (registers) {
        client::CallExport("DllRegisterServer");
    }
    const int status = RUN_ALL_TESTS();
    if (registers) {
        client::CallExport("DllUnregisterServer");
    }
    return status;
}
