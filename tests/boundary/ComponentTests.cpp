// Encoder and CError as a client meets them, by slot, by name and as a script, on the simulated reader.
#include "tests/boundary/Client.h"

#include <ocidl.h>

#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // interfaces have no destructor

namespace client
{

namespace
{

constexpr LONG KeyTypeA = 1;
constexpr const wchar_t* EncoderName = L"ACG_MultiISO_TV.Encoder";

LONG NumberOf(_Encoder& encoder)
{
    return Make(Way::BySlot, *RecordOf(encoder).Get(), L"Number").Value;
}

std::wstring FunctionOf(_Encoder& encoder)
{
    return TextOf(Make(Way::BySlot, *RecordOf(encoder).Get(), L"ComFunction").Value);
}

ULONG References(IUnknown& object)
{
    object.AddRef();
    return object.Release();
}

class WayTest : public testing::TestWithParam<Way>
{
protected:
    const Way way = GetParam();
    ComPtr<_Encoder> made = NewEncoder();
    _Encoder& encoder = *made.Get();
    const LONG card = 0x10 + static_cast<LONG>(way); // of its own
};
constexpr const char* WayNames[] = {"BySlot", "ByName", "AsScript"};
INSTANTIATE_TEST_SUITE_P(Ways, WayTest, testing::Values(Way::BySlot, Way::ByName, Way::AsScript),
                         [](const auto& way) { return WayNames[static_cast<size_t>(way.param)]; });

TEST_P(WayTest, OperationsComeThrough)
{
    const std::wstring parameters = ParametersFor(card);
    EXPECT_EQ(Make(way, encoder, L"Parameters", {parameters.c_str()}).Result, S_OK);
    EXPECT_NE(TextOf(Make(way, encoder, L"Parameters").Value).find(parameters), std::wstring::npos);
    const std::wstring information = TextOf(Make(way, encoder, L"GetInformation").Value);
    ASSERT_TRUE(information.starts_with(L"Tarvello|ACG Multi-ISO|7.1.1947|1|"));

    constexpr LONG bothKeys = 2;
    constexpr LONG readOnly = scbs_A_Read + scbs_B_Read;
    constexpr LONG all = scbs_A_ReadWrite + scbs_B_ReadWrite;
    constexpr LONG keep = -1;
    const wchar_t* const keyA = L"A0A1A2A3A4A5";
    const std::wstring serial = parameters.substr(16);
    const LONG handle = std::stol(information.substr(34));
    const struct {
        const wchar_t* Name;
        std::vector<_variant_t> Given;
        std::vector<_variant_t> Expected; ///< from the last argument backwards
    } rows[] = {
        {L"OpenEncoder", {handle}, {handle}},
        {L"ReadSerialNumber", {L""}, {serial.c_str()}},
        {L"ReadManufacturerCode",
         {FactoryKey, KeyTypeA, 0L, 0L, L""},
         {L"08040053494D554C415445", BYTE(card), card}},
        {L"WriteDataBloc",
         {5L, FactoryKey, KeyTypeA, L" 000102030405060708090a0b0c0d0e0f "},
         {L"000102030405060708090A0B0C0D0E0F"}},
        {L"WriteBytesInBloc",
         {5L, FactoryKey, KeyTypeA, 14L, 15L, L"AABB"},
         {L"000102030405060708090A0B0C0DAABB"}},
        {L"ReadDataBloc", {5L, FactoryKey, KeyTypeA, L""}, {L"000102030405060708090A0B0C0DAABB"}},
        {L"WriteValueBloc", {6L, FactoryKey, KeyTypeA, -2L}, {-2L}},
        {L"ReadDataBloc", {6L, FactoryKey, KeyTypeA, L""}, {L"FEFFFFFF01000000FEFFFFFF06F906F9"}},
        {L"WriteSectorTrailer",
         {2L, FactoryKey, KeyTypeA, keyA, keyA, bothKeys, readOnly, all, keep,
          LONG{scss_B_WriteKeysConditions}},
         {}},
        {L"ReadSectorTrailer",
         {2L, keyA, KeyTypeA, 0L, 0L, 0L, 0L, 0L, 0L},
         {BYTE(0x69), LONG{scss_B_WriteKeysConditions}, all, all, readOnly, BYTE(bothKeys)}},
        {L"CloseEncoder", {}, {}},
    };
    for (const auto& [name, given, expected] : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(name)));
        const Outcome outcome = Make(way, encoder, name, given);
        EXPECT_EQ(outcome.Result, S_OK);
        EXPECT_EQ(LONG{outcome.Value}, sceSuccess);
        EXPECT_EQ(NumberOf(encoder), 0);
        EXPECT_EQ(FunctionOf(encoder), name);
        for (size_t at = 0; at < expected.size(); ++at) {
            EXPECT_EQ(TextOf(outcome.Arguments[given.size() - 1 - at]), TextOf(expected[at])) << at;
        }
    }
    EXPECT_EQ(Make(way, encoder, L"ReOpenEncoder").Result, S_OK);
    EXPECT_EQ(LONG{Make(way, encoder, L"EncoderState").Value}, sceReady);
    EXPECT_EQ(TextOf(Make(way, encoder, L"ReaderType").Value), L"MultiISO 2.1");
}

TEST_P(WayTest, FailuresComeThroughAsResultsAndRaisedOnesAsFailedCalls)
{
    const Outcome failed = Make(way, encoder, L"ReadDataBloc", {5L, FactoryKey, KeyTypeA, L"kept"});
    EXPECT_EQ(failed.Result, S_OK);
    EXPECT_EQ(LONG{failed.Value}, sceError);
    EXPECT_EQ(TextOf(failed.Arguments[3]), L"kept");
    EXPECT_EQ(NumberOf(encoder), -1);

    const struct {
        const wchar_t* Name;
        HRESULT Result;
        const wchar_t* Description;
        const wchar_t* Source;
    } rows[] = {{L"ATRString", -16, L"Feature not supported", L""},
                {L"CardType", -16, L"Feature not supported", L""},
                {L"SerialNumberLength", -16, L"Feature not supported", L""},
                {L"ReaderType", -1, L"Encoder is closed", EncoderName}};
    for (const auto& [name, result, description, source] : rows) {
        const Outcome raised = Make(way, encoder, name);
        EXPECT_EQ(raised.Result, result);
        EXPECT_TRUE(raised.Description == _bstr_t(description));
        EXPECT_TRUE(raised.Source == _bstr_t(source));
        EXPECT_TRUE(V_I4(&raised.Value) == 0 || TextOf(raised.Value).empty());
        EXPECT_EQ(FunctionOf(encoder), name);
    }
}

TEST_P(WayTest, RecordsFieldsCanBeReadAndWritten)
{
    const Outcome record = Make(way, encoder, L"LastError");
    ASSERT_EQ(V_VT(&record.Value), VT_DISPATCH);
    auto& error = static_cast<_CError&>(*V_DISPATCH(&record.Value));
    for (const Member& member : Members<_CError>()) {
        if (member.Kind == DISPATCH_PROPERTYPUT) {
            const std::wstring withNul = std::wstring(L"1\0b", 3) + member.Name;
            _variant_t text;
            V_VT(&text) = VT_BSTR;
            V_BSTR(&text) = SysAllocStringLen(withNul.data(), static_cast<UINT>(withNul.size()));
            const _variant_t value = member.Types[0] == VT_BSTR ? text : _variant_t(-7L);
            EXPECT_EQ(Make(way, error, member, {value}).Result, S_OK);
            EXPECT_EQ(TextOf(Make(way, error, member.Name.c_str()).Value), TextOf(value));
        }
    }
    EXPECT_EQ(error.put_ComFunction(nullptr), S_OK); // as empty text
    EXPECT_EQ(FunctionOf(encoder), L"");
}

TEST_P(WayTest, ByteIsConvertedBySystemAndItsVariableLeftAlone)
{
    _variant_t leftOut;
    V_VT(&leftOut) = VT_ERROR;
    V_ERROR(&leftOut) = DISP_E_PARAMNOTFOUND;
    _variant_t null;
    V_VT(&null) = VT_NULL;
    constexpr LONG badByte = -15;
    const struct {
        _variant_t Given;
        LONG Number;         ///< of the record
        const wchar_t* Byte; ///< on the card, where it was written
    } rows[] = {{leftOut, 0, L"69"}, {_variant_t(), 0, L"00"},
                {null, badByte, {}}, {255L, 0, L"FF"},
                {256L, badByte, {}}, {-1L, badByte, {}},
                {2.5, 0, L"02"},     {L"16", 0, L"10"},
                {L"x", badByte, {}}, {RecordOf(encoder).Get(), badByte, {}}};
    LONG ownCard = 0x100 * card;
    for (const auto& [given, number, byte] : rows) {
        Open(encoder, ++ownCard);
        const Outcome outcome =
            Make(way, encoder, L"WriteSectorTrailer",
                 {1L, FactoryKey, KeyTypeA, FactoryKey, FactoryKey, 1L, -1L, -1L, -1L, -1L, given});
        EXPECT_EQ(outcome.Result, S_OK);
        EXPECT_EQ(V_VT(&outcome.Arguments[10]), V_VT(&given));
        EXPECT_EQ(NumberOf(encoder), number);
        if (byte != nullptr) {
            const Outcome trailer = Make(way, encoder, L"ReadDataBloc", {7L, FactoryKey, KeyTypeA, L""});
            EXPECT_EQ(TextOf(trailer.Arguments[3]).substr(18, 2), byte);
        }
    }
}

// The timer comes while the dialog is open, on its thread, and releases the last reference.
_Encoder* InConfigure = nullptr;

void CALLBACK ReleaseAndCancel(HWND /*window*/, UINT /*message*/, UINT_PTR timer, DWORD /*time*/)
{
    const HWND dialog = FindWindowW(nullptr, L"Configuration de l'encodeur ACG");
    if (dialog != nullptr) {
        KillTimer(nullptr, timer);
        EXPECT_GT(InConfigure->Release(), 0U);
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
}

TEST_P(WayTest, ConfigureKeepsItsObjectWhileItsDialogIsOpen)
{
    const ComPtr<_CError> error = RecordOf(encoder);
    InConfigure = made.Detach();
    constexpr UINT pollTime = 20; // milliseconds
    ASSERT_NE(SetTimer(nullptr, 0, pollTime, &ReleaseAndCancel), 0U);
    EXPECT_EQ(LONG{Make(way, *InConfigure, L"Configure", {L"francais"}).Value}, sceCanceled);
    EXPECT_EQ(References(*error.Get()), 1U); // the Encoder, which held it too, has gone
}

/// Every member but Configure, which waits for a person, with arguments of which each has its declared type.
template <class Body>
void ForEveryMember(IDispatch& object, const std::vector<Member>& members, const Body& body)
{
    for (const Member& member : members) {
        if (member.Name != L"Configure") {
            SCOPED_TRACE(testing::PrintToString(member.Name));
            std::vector<_variant_t> arguments(member.Inputs(), _variant_t(1L));
            for (size_t at = 0; at < arguments.size(); ++at) {
                if (Plain(member.Types[at]) != VT_VARIANT) {
                    arguments[at].ChangeType(Plain(member.Types[at]));
                }
            }
            body(object, member, arguments);
        }
    }
}

template <class Body>
void ForEveryMember(_Encoder& encoder, const Body& body)
{
    ForEveryMember(encoder, Members<_Encoder>(), body);
    ForEveryMember(*RecordOf(encoder).Get(), Members<_CError>(), body);
}

TEST(EveryMemberTest, RefusesNullInPlaceOfAVariable)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    ForEveryMember(*encoder.Get(), [](IDispatch& object, const Member& member, const auto& arguments) {
        for (size_t at = 0; at < member.Types.size(); ++at) {
            if ((member.Types[at] & VT_BYREF) != 0 && member.Types[at] != VariantReference) {
                Call call(Way::BySlot, object, member, arguments);
                V_BYREF(&call.Passed[at]) = nullptr;
                EXPECT_EQ(call.Run(), E_POINTER) << at;
                call.Value.Detach();
            }
        }
    });
    EXPECT_EQ(FunctionOf(*encoder.Get()), L""); // no operation has begun
}

TEST(EveryMemberTest, ConvertsAScriptsVariableOrTellsWhichItRefuses)
{
    const ComPtr<_Encoder> encoder = NewEncoder(); // closed: operations come to their end with sceError
    ForEveryMember(*encoder.Get(), [](IDispatch& object, const Member& member, const auto& arguments) {
        for (size_t at = 0; at < arguments.size(); ++at) {
            const auto plain = Plain(member.Types[at]);
            const bool isVariable = (member.Types[at] & VT_BYREF) != 0;
            const size_t position = arguments.size() - 1 - at;
            if (plain == VT_VARIANT) {
                continue;
            }
            const auto run = [&](const _variant_t& content) {
                Call call(Way::AsScript, object, member, arguments);
                call.Arguments[at] = content;
                const HRESULT result = call.Run();
                EXPECT_EQ(V_VT(&call.Arguments[at]),
                          SUCCEEDED(result) && isVariable ? plain : V_VT(&content));
                EXPECT_EQ(call.BadArgument, SUCCEEDED(result) ? MAXUINT : position);
                return result;
            };
            EXPECT_EQ(run(arguments[at]), S_OK);
            EXPECT_EQ(run(_variant_t()), S_OK);
            EXPECT_EQ(run(1.0), S_OK);
            _variant_t null;
            V_VT(&null) = VT_NULL;
            EXPECT_EQ(run(null), DISP_E_TYPEMISMATCH);
            EXPECT_EQ(run(L"300000000000"), plain == VT_BSTR ? S_OK : DISP_E_OVERFLOW);

            _variant_t variable = arguments[at];
            VARIANTARG leftOut{};
            V_VT(&leftOut) = VT_ERROR;
            V_ERROR(&leftOut) = DISP_E_PARAMNOTFOUND;
            VARIANTARG once = ReferenceTo(VT_VARIANT, &variable);
            VARIANTARG twice = ReferenceTo(VT_VARIANT, &once);
            float wrongType = 1;
            SAFEARRAY* array = nullptr;
            const struct {
                VARIANTARG Given;
                HRESULT Result;
            } rows[] = {{twice, S_OK},
                        {ReferenceTo(VT_VARIANT, &twice), DISP_E_TYPEMISMATCH},
                        {ReferenceTo(VT_R4, &wrongType), isVariable ? DISP_E_TYPEMISMATCH : S_OK},
                        {ReferenceTo(VT_ARRAY | VT_I4, &array), DISP_E_TYPEMISMATCH},
                        {ReferenceTo(VT_VARIANT, nullptr), E_POINTER},
                        {ReferenceTo(plain, nullptr), E_POINTER},
                        {leftOut, DISP_E_PARAMNOTOPTIONAL}};
            for (const auto& [given, result] : rows) {
                Call call(Way::ByName, object, member, arguments);
                call.Passed[position] = given;
                EXPECT_EQ(call.Run(), result) << V_VT(&given);
                EXPECT_EQ(call.BadArgument, FAILED(result) ? position : MAXUINT);
            }
        }
    });
}

TEST(ObjectTest, TakesArgumentsByTheirNamesAndRefusesListsThatAreNotWhole)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"ReadDataBloc"), const_cast<LPOLESTR>(L"BlocContents"),
                        const_cast<LPOLESTR>(L"KeyType")};
    DISPID ids[3] = {};
    ASSERT_EQ(encoder->GetIDsOfNames(IID{}, names, 3, LOCALE_USER_DEFAULT, ids), S_OK);
    EXPECT_EQ(encoder->GetIDsOfNames(__uuidof(_Encoder), names, 1, LOCALE_USER_DEFAULT, ids),
              DISP_E_UNKNOWNINTERFACE);
    _variant_t contents(12.0);
    VARIANTARG given[] = {ReferenceTo(VT_VARIANT, &contents), _variant_t(1L), _variant_t(1L), _variant_t(4L)};
    const auto call = [&](DISPPARAMS list, DISPID id = DISPID_UNKNOWN) {
        return encoder->Invoke(id == DISPID_UNKNOWN ? ids[0] : id, IID{}, LOCALE_USER_DEFAULT,
                               DISPATCH_METHOD, &list, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(call({given, ids + 1, 4, 2}), S_OK);
    EXPECT_EQ(TextOf(contents), L"12"); // the encoder is closed, so it stays, but for its type
    EXPECT_EQ(call({nullptr, nullptr, 4, 0}), E_INVALIDARG);
    EXPECT_EQ(call({given, nullptr, 4, 2}), E_INVALIDARG);
    EXPECT_EQ(call({given, ids + 1, 1, 2}), E_INVALIDARG);
    EXPECT_EQ(call({given, nullptr, 3, 0}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(call({given, nullptr, 4, 0}, 0x1234), DISP_E_MEMBERNOTFOUND);
}

TEST(ObjectTest, AnswersToItsInterfacesAndRefusesOthers)
{
    ComPtr<_Encoder> encoder = NewEncoder();
    const ComPtr<_CError> error = RecordOf(*encoder.Get());
    EXPECT_EQ(RecordOf(*encoder.Get()).Get(), error.Get());
    const struct {
        IDispatch* Object;
        IID Own;
        IID OfTheOther;
    } rows[] = {{encoder.Get(), __uuidof(_Encoder), __uuidof(_CError)},
                {error.Get(), __uuidof(_CError), __uuidof(_Encoder)}};
    for (const auto& [object, own, ofTheOther] : rows) {
        const ULONG references = References(*object);
        const struct {
            IID Id;
            HRESULT Result;
        } wanted[] = {{__uuidof(IUnknown), S_OK},
                      {__uuidof(IDispatch), S_OK},
                      {own, S_OK},
                      {__uuidof(IProvideClassInfo), S_OK},
                      {__uuidof(ISupportErrorInfo), S_OK},
                      {ofTheOther, E_NOINTERFACE}};
        for (const auto& [id, result] : wanted) {
            ComPtr<IUnknown> answered(object);
            EXPECT_EQ(object->QueryInterface(id, reinterpret_cast<void**>(answered.ReleaseAndGetAddressOf())),
                      result);
            EXPECT_EQ(References(*object), references + (result == S_OK ? 1 : 0));
        }
        EXPECT_EQ(object->QueryInterface(own, nullptr), E_POINTER);

        ComPtr<ISupportErrorInfo> errorInfo;
        ASSERT_EQ(ComPtr<IUnknown>(object).As(&errorInfo), S_OK);
        EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(own), S_OK);
        EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(ofTheOther), S_FALSE);
        ComPtr<ITypeInfo> info;
        EXPECT_EQ(object->GetTypeInfo(0, 0, info.GetAddressOf()), S_OK);
        EXPECT_EQ(object->GetTypeInfo(1, 0, info.ReleaseAndGetAddressOf()), DISP_E_BADINDEX);
        EXPECT_EQ(object->GetTypeInfo(0, 0, nullptr), E_POINTER);
    }
    EXPECT_EQ(encoder.Reset(), 0U);
    EXPECT_EQ(References(*error.Get()), 1U); // it outlives its encoder
}

// What a thread of another apartment does with the object, and how it went.
struct Apartment {
    DWORD Kind;
    IStream* Marshalled;
    HRESULT Got = E_UNEXPECTED;
    Outcome Read;
    Outcome Raised;
    HRESULT Created = E_UNEXPECTED;
};

DWORD WINAPI RunApartment(void* argument)
{
    auto& apartment = *static_cast<Apartment*>(argument);
    CoInitializeEx(nullptr, apartment.Kind);
    {
        ComPtr<_Encoder> encoder;
        apartment.Got = CoGetInterfaceAndReleaseStream(apartment.Marshalled, __uuidof(_Encoder),
                                                       reinterpret_cast<void**>(encoder.GetAddressOf()));
        if (SUCCEEDED(apartment.Got)) {
            const wchar_t* const text = L"text";
            apartment.Read =
                Make(Way::BySlot, *encoder.Get(), L"ReadDataBloc", {4L, FactoryKey, KeyTypeA, text});
            apartment.Raised = Make(Way::ByName, *encoder.Get(), L"ATRString");
        }
        ComPtr<_Encoder> own;
        apartment.Created =
            CoCreateInstance(__uuidof(Encoder), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_Encoder),
                             reinterpret_cast<void**>(own.GetAddressOf()));
    }
    CoUninitialize();
    return 0;
}

TEST(ObjectTest, CanBeUsedFromAnotherApartment)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    Open(*encoder.Get(), 1);
    for (const DWORD kind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}) {
        Apartment apartment{kind};
        ASSERT_EQ(
            CoMarshalInterThreadInterfaceInStream(__uuidof(_Encoder), encoder.Get(), &apartment.Marshalled),
            S_OK);
        const HANDLE thread = CreateThread(nullptr, 0, &RunApartment, &apartment, 0, nullptr);
        while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
            MSG message;
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
                DispatchMessageW(&message);
            }
        }
        CloseHandle(thread);
        EXPECT_EQ(apartment.Got, S_OK);
        EXPECT_EQ(LONG{apartment.Read.Value}, sceSuccess);
        EXPECT_EQ(TextOf(apartment.Read.Arguments[3]), std::wstring(32, L'0'));
        EXPECT_EQ(apartment.Raised.Result, -16);
        EXPECT_EQ(apartment.Created, S_OK);
    }
}

} // namespace

} // namespace client
