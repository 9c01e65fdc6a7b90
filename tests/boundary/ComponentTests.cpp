// Encoder and CError as a client meets them, by slot, by name and as a script, on the simulated reader.
#include "tests/boundary/Client.h"

namespace client
{

/// With its type, which a client gets too.
std::wstring TypedText(const _variant_t& value)
{
    return std::to_wstring(V_VT(&value)) + L' ' + TextOf(value);
}

/// The card is one of its own, as cards last as long as the process.
void ExpectOperations(Way way, const wchar_t* serial, BYTE checkSum)
{
    const Ptr<_Encoder> encoder(__uuidof(Encoder));
    const Ptr<_CError> record = RecordOf(*encoder);
    Call(way, *encoder, L"Parameters", {(std::wstring(L"Device=com1,uid=") + serial).c_str()});
    EXPECT_NE(TextOf(Call(way, *encoder, L"Parameters").Value).find(serial), std::wstring::npos);
    const std::wstring information = TextOf(Call(way, *encoder, L"GetInformation").Value);
    ASSERT_TRUE(information.starts_with(L"Tarvello|ACG Multi-ISO|7.1.1947|1|"));
    const LONG handle = std::stol(information.substr(34));
    constexpr const wchar_t* key = FactoryKey;
    constexpr const wchar_t* a = L"A0A1A2A3A4A5";
    constexpr const wchar_t* b = L"B0B1B2B3B4B5";
    constexpr LONG keyA = 1;
    constexpr LONG keyB = 2;
    constexpr LONG both = 2;
    constexpr LONG read = scbs_A_Read + scbs_B_Read;
    constexpr LONG all = scbs_A_ReadWrite + scbs_B_ReadWrite;
    constexpr LONG trailer = scss_B_WriteKeysConditions;
    const wchar_t* const block = L"000102030405060708090A0B0C0DAABB";
    const struct {
        const wchar_t* Name;
        std::vector<_variant_t> Given;
        std::vector<_variant_t> Expected; ///< from the last argument backwards
        LONG Number = 0;                  ///< of the record
        const wchar_t* Source = nullptr;  ///< where it is raised
    } rows[] = {
        {L"ReaderType", {}, {}, -1, L"ACG_MultiISO_TV.Encoder"},
        {L"ATRString", {}, {}, -16, L""},
        {L"CardType", {}, {}, -16, L""},
        {L"SerialNumberLength", {}, {}, -16, L""},
        {L"ReadDataBloc", {5L, key, keyA, L"kept"}, {L"kept"}, -1},
        {L"OpenEncoder", {handle}, {handle}},
        {L"ReadSerialNumber", {L""}, {serial}},
        {L"ReadManufacturerCode",
         {key, keyA, 0L, 0L, L""},
         {L"08040053494D554C415445", checkSum, LONG{checkSum}}},
        {L"WriteDataBloc", {5L, key, keyA, L" 000102030405060708090a0b0c0daabb "}, {block}},
        {L"WriteBytesInBloc", {5L, key, keyA, 10L, 11L, L"FEFF"}, {L"00010203040506070809FEFF0C0DAABB"}},
        {L"WriteBytesInBloc", {5L, key, keyA, 10L, 11L, L"0A0B"}, {block}},
        {L"ReadDataBloc", {5L, key, keyA, L""}, {block}},
        {L"WriteValueBloc", {6L, key, keyA, -2L}, {-2L}},
        {L"WriteSectorTrailer", {2L, key, keyA, a, b, both, read, all, all, trailer, L"16"}, {L"16"}},
        {L"ReadSectorTrailer",
         {2L, a, keyA, 0L, 0L, 0L, 0L, 0L, 0L},
         {BYTE(16), trailer, all, all, read, BYTE(both)}},
        {L"WriteSectorTrailer", {2L, b, keyB, a, b, both, read, all, all, trailer, 256L}, {256L}, -15},
        {L"WriteSectorTrailer", {2L, b, keyB, a, b, both, read, all, all, trailer}, {}},
        {L"ReadSectorTrailer", {2L, a, keyA, 0L, 0L, 0L, 0L, 0L, 0L}, {BYTE(16)}},
        {L"CloseEncoder", {}, {}},
    };
    for (const auto& [name, given, expected, number, source] : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(name)) + std::to_string(checkSum));
        const Call call(way, *encoder, name, given);
        EXPECT_EQ(TextOf(Call(way, *record, L"Number").Value), std::to_wstring(number));
        EXPECT_EQ(TextOf(Call(way, *record, L"ComFunction").Value), name);
        EXPECT_EQ(call.Result, source == nullptr ? S_OK : number);
        EXPECT_STREQ(call.Raised.bstrSource, source);
        const std::wstring value = TextOf(call.Value);
        if (source == nullptr) {
            EXPECT_EQ(value, number == 0 ? L"0" : L"2");
        } else {
            EXPECT_EQ(call.Raised.bstrDescription, TextOf(Call(way, *record, L"Description").Value));
            EXPECT_TRUE(value.empty() || value == L"0");
        }
        for (size_t at = 0; at < expected.size(); ++at) {
            EXPECT_EQ(TypedText(call.Arguments[given.size() - 1 - at]), TypedText(expected[at])) << at;
        }
    }
    EXPECT_EQ(Call(way, *encoder, L"ReOpenEncoder").Result, S_OK);
    EXPECT_EQ(TypedText(Call(way, *encoder, L"EncoderState").Value), TypedText(LONG{sceReady}));
    EXPECT_EQ(TypedText(Call(way, *encoder, L"ReaderType").Value), TypedText(L"MultiISO 2.1"));
}

TEST(EncoderTest, OperationsAndRaisedFailuresComeThroughInEveryWay)
{
    ExpectOperations(Way::BySlot, L"00000011", 0x11);
    ExpectOperations(Way::ByName, L"00000012", 0x12);
    ExpectOperations(Way::AsScript, L"00000013", 0x13);
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
            EXPECT_EQ(TypedText(Call(Way::BySlot, *record, member.Name.c_str()).Value), TypedText(value));
        }
    }
    EXPECT_EQ(record->put_ComFunction(nullptr), S_OK); // as empty text
}

/// By slot, null in place of a variable; by name, what can't be converted. The encoder is closed: operations
/// come to their end.
void ExpectRefusals(IDispatch& object, const Member& member)
{
    SCOPED_TRACE(testing::PrintToString(member.Name));
    Ptr<ICreateErrorInfo> earlier;
    CreateErrorInfo(&earlier);
    earlier->SetDescription(_bstr_t(L"of an earlier call"));
    const std::vector<_variant_t> arguments(member.Inputs, _variant_t(1L));
    for (size_t at = 0; at < member.Types.size(); ++at) {
        const VARTYPE plain = Plain(member.Types[at]);
        if (plain == VT_VARIANT) { // which takes anything
            continue;
        }
        if (plain != member.Types[at]) {
            Call call(Way::BySlot, object, member, arguments);
            V_BYREF(&call.Passed[at]) = nullptr;
            call.Raised = {};
            SetErrorInfo(0, Ptr<IErrorInfo>(earlier));
            EXPECT_EQ(call.Repeat(), E_POINTER) << at;
            EXPECT_EQ(call.Raised.bstrDescription, nullptr); // the earlier one isn't this call's
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
            {_variant_t(DISP_E_PARAMNOTFOUND, VT_ERROR), DISP_E_PARAMNOTOPTIONAL},
            {_variant_t(3e11), plain == VT_BSTR ? S_OK : DISP_E_OVERFLOW}};
        for (size_t row = 0; row < std::size(rows) && at < member.Inputs; ++row) {
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
    for (const Member& member : Members<_CError>()) {
        ExpectRefusals(*RecordOf(*encoder), member);
    }
    EXPECT_EQ(
        slots,
        L"=Parameters Parameters LastError EncoderState ReaderType ATRString CardType SerialNumberLength "
        L"GetInformation Configure OpenEncoder CloseEncoder ReadSerialNumber ReadDataBloc "
        L"ReadManufacturerCode ReadSectorTrailer WriteDataBloc WriteValueBloc WriteSectorTrailer "
        L"WriteBytesInBloc ReOpenEncoder");
}

TEST(ObjectTest, DescribesItselfTakesNamedArgumentsAndRefusesIncompleteLists)
{
    const Ptr<_Encoder> encoder(__uuidof(Encoder));
    constexpr DISPID readDataBloc = 13;
    DISPID names[] = {3, 2}; // its contents and the key's type
    _variant_t contents(12.0);
    VARIANTARG given[6] = {ReferenceTo(VT_VARIANT, &contents), _variant_t(1L), _variant_t(1L),
                           _variant_t(4L)};
    const std::pair<DISPPARAMS, HRESULT> rows[] = {{{given, names, 4, 2}, S_OK},
                                                   {{nullptr, nullptr, 4, 0}, E_INVALIDARG},
                                                   {{given, nullptr, 4, 2}, E_INVALIDARG},
                                                   {{given, names, 1, 2}, E_INVALIDARG},
                                                   {{given, nullptr, 3, 0}, DISP_E_BADPARAMCOUNT},
                                                   {{given + 1, nullptr, 5, 0}, DISP_E_BADPARAMCOUNT}};
    for (auto [list, result] : rows) {
        EXPECT_EQ(encoder->Invoke(readDataBloc, IID{}, 0, DISPATCH_METHOD, &list, nullptr, nullptr, nullptr),
                  result);
    }
    EXPECT_EQ(TypedText(contents), TypedText(L"12")); // not read, as the encoder is closed
    EXPECT_EQ(Ptr<ISupportErrorInfo>(encoder)->InterfaceSupportsErrorInfo(__uuidof(_Encoder)), S_OK);
    EXPECT_EQ(Ptr<ISupportErrorInfo>(encoder)->InterfaceSupportsErrorInfo(__uuidof(_CError)), S_FALSE);
    Ptr<ITypeInfo> info;
    EXPECT_EQ(Ptr<IProvideClassInfo>(encoder)->GetClassInfo(&info), S_OK);
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
    Ptr<_CError> record = RecordOf(*encoder);
    InConfigure = encoder.Detach();
    ASSERT_NE(SetTimer(nullptr, 0, /*milliseconds*/ 20, &ReleaseAndCancel), 0U);
    EXPECT_EQ(LONG{Call(Way::BySlot, *InConfigure, L"Configure", {L"francais"}).Value}, sceCanceled);
    EXPECT_EQ(record.Detach()->Release(), 0U); // the Encoder, which held it too, has gone
}

/// What another thread does with an encoder that is marshalled to it.
DWORD WINAPI RunApartment(void* marshalled)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    Ptr<_Encoder> encoder;
    CoGetInterfaceAndReleaseStream(static_cast<IStream*>(marshalled), __uuidof(_Encoder),
                                   reinterpret_cast<void**>(&encoder));
    encoder->ReOpenEncoder();
    const Call read(Way::BySlot, *encoder, L"ReadDataBloc", {4L, FactoryKey, 1L, L"text"});
    EXPECT_EQ(TextOf(read.Arguments[3]), std::wstring(32, L'0'));
    EXPECT_EQ(Call(Way::ByName, *encoder, L"ATRString").Result, -16);
    encoder.Release();
    CoUninitialize();
    return 0;
}

TEST(ObjectTest, CanBeUsedFromAnotherApartment)
{
    const Ptr<_Encoder> encoder(__uuidof(Encoder));
    IStream* marshalled = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(__uuidof(_Encoder), encoder, &marshalled), S_OK);
    HANDLE thread = CreateThread(nullptr, 0, &RunApartment, marshalled, 0, nullptr);
    DWORD index = 0;
    EXPECT_EQ(CoWaitForMultipleHandles(0, INFINITE, 1, &thread, &index), S_OK);
    CloseHandle(thread);
}

} // namespace client
