// Encoder and CError as a client meets them, by slot, by name and as a script, on the simulated reader.
#include "tests/boundary/Client.h"

#include <ocidl.h>

#pragma GCC diagnostic ignored "-Wnon-virtual-dtor" // interfaces have no destructor

namespace client
{

namespace
{

class MemberTest : public testing::TestWithParam<Way>
{
protected:
    const Way way = GetParam();
    const ComPtr<_Encoder> made = NewEncoder();
    _Encoder& encoder = *made.Get();
    const ComPtr<_CError> record = RecordOf(encoder);
    const Text key{FactoryKey};
    const SCBS_SecurityLevelEnum keep = Raw<SCBS_SecurityLevelEnum>(-1);
    const SCSS_SecurityLevelEnum keepTrailer = Raw<SCSS_SecurityLevelEnum>(-1);

    template <class Called, class... Arguments>
    void Succeeds(const Called& member, const Arguments&... arguments)
    {
        auto result = Raw<sceReturnCode>(Poison);
        EXPECT_EQ(member(way, encoder, arguments..., &result), Outcome());
        EXPECT_EQ(result, sceSuccess) << testing::PrintToString(std::wstring(member.Name));
        EXPECT_EQ(NumberOf(*record.Get()), NoNumber);
        EXPECT_EQ(FunctionOf(*record.Get()), member.Name);
    }
};
constexpr const char* WayNames[] = {"BySlot", "ByName", "AsScript"};
INSTANTIATE_TEST_SUITE_P(Ways, MemberTest, testing::Values(Way::BySlot, Way::ByName, Way::AsScript),
                         [](const auto& way) { return WayNames[static_cast<size_t>(way.param)]; });

TEST_P(MemberTest, OperationsComeThrough)
{
    const LONG card = 0x10 + static_cast<LONG>(way);
    EXPECT_EQ(PutParameters(way, encoder, Text(ParametersFor(card))), Outcome());
    Text text;
    EXPECT_EQ(GetParameters(way, encoder, text.Variable()), Outcome());
    EXPECT_NE(text.Characters().find(ParametersFor(card)), std::wstring::npos);
    Text information;
    EXPECT_EQ(GetInformation(way, encoder, information.Variable()), Outcome());
    EXPECT_TRUE(information.Characters().starts_with(L"Tarvello|ACG Multi-ISO|7.1.1947|1|"));
    Succeeds(OpenEncoder, HandleNumber(information.Characters()));

    sceEncoderState state{};
    EXPECT_EQ(EncoderState(way, encoder, &state), Outcome());
    EXPECT_EQ(state, sceReady);
    Text type;
    EXPECT_EQ(ReaderType(way, encoder, type.Variable()), Outcome());
    EXPECT_EQ(type.Characters(), L"MultiISO 2.1");

    Succeeds(ReadSerialNumber, text.Variable());
    EXPECT_EQ(text.Characters(), ParametersFor(card).substr(16));
    LONG number = Poison;
    unsigned char checkSum = 0;
    Succeeds(ReadManufacturerCode, key, KeyTypeA, &number, &checkSum, text.Variable());
    EXPECT_EQ(number, card);
    EXPECT_EQ(checkSum, card); // the exclusive or of the number's bytes
    EXPECT_EQ(text.Characters().size(), 22U);

    Text block(L" 000102030405060708090a0b0c0d0e0f ");
    Succeeds(WriteDataBloc, 5, key, KeyTypeA, block.Variable());
    Text bytes(L"AABB");
    constexpr unsigned char from = 14;
    constexpr unsigned char to = 15;
    Succeeds(WriteBytesInBloc, 5, key, KeyTypeA, from, to, bytes.Variable());
    Succeeds(ReadDataBloc, 5, key, KeyTypeA, block.Variable());
    EXPECT_EQ(block.Characters(), L"000102030405060708090A0B0C0DAABB");
    EXPECT_EQ(bytes.Characters(), block.Characters());
    Succeeds(WriteValueBloc, 6, key, KeyTypeA, -2);
    Succeeds(ReadDataBloc, 6, key, KeyTypeA, block.Variable());
    EXPECT_EQ(block.Characters().substr(0, 16), L"FEFFFFFF01000000");

    constexpr unsigned char bothKeys = 2;
    const auto readOnly = Raw<SCBS_SecurityLevelEnum>(scbs_A_Read + scbs_B_Read);
    const auto readWrite = Raw<SCBS_SecurityLevelEnum>(scbs_A_ReadWrite + scbs_B_ReadWrite);
    const Text keyA(L"A0A1A2A3A4A5");
    const Text keyB(L"B0B1B2B3B4B5");
    Succeeds(WriteSectorTrailer, 2, key, KeyTypeA, keyA, keyB, bothKeys, readOnly, readWrite, keep,
             scss_B_WriteKeysConditions, nullptr);
    unsigned char keysUsed = 0;
    unsigned char bx = 0;
    SCBS_SecurityLevelEnum levels[] = {keep, keep, keep};
    SCSS_SecurityLevelEnum trailer{};
    Succeeds(ReadSectorTrailer, 2, keyA, KeyTypeA, &keysUsed, &levels[0], &levels[1], &levels[2], &trailer,
             &bx);
    EXPECT_EQ(keysUsed, bothKeys);
    EXPECT_EQ(std::to_array(levels), (std::array{readOnly, readWrite, readWrite}));
    EXPECT_EQ(trailer, scss_B_WriteKeysConditions);
    EXPECT_EQ(bx, 0x69);

    EXPECT_EQ(ReOpenEncoder(way, encoder), Outcome());
    EXPECT_EQ(FunctionOf(*record.Get()), L"OpenEncoder");
    Succeeds(CloseEncoder);
    EXPECT_EQ(EncoderState(way, encoder, &state), Outcome());
    EXPECT_EQ(state, sceClosed);
}

TEST_P(MemberTest, FailedOperationGivesItsResultAndNoFailedCall)
{
    Text block(L"kept");
    sceReturnCode result = sceSuccess;
    EXPECT_EQ(ReadDataBloc(way, encoder, 5, key, KeyTypeA, block.Variable(), &result), Outcome());
    EXPECT_EQ(result, sceError);
    EXPECT_EQ(block.Characters(), L"kept");
    EXPECT_EQ(NumberOf(*record.Get()), -1);
    EXPECT_EQ(FunctionOf(*record.Get()), L"ReadDataBloc");
}

TEST_P(MemberTest, RaisedFailureCarriesNumberDescriptionAndSource)
{
    const auto raises = [&](const auto& member, auto result, const Outcome& expected) {
        EXPECT_EQ(member(way, encoder, &result), expected);
        EXPECT_EQ(way == Way::BySlot, result == decltype(result)()); // by name it isn't handed over
        EXPECT_EQ(NumberOf(*record.Get()), expected.Result);
        EXPECT_EQ(FunctionOf(*record.Get()), member.Name);
    };
    const Outcome notSupported = {-16, L"Feature not supported", L""};
    raises(ATRString, reinterpret_cast<BSTR>(Poison), notSupported);
    raises(CardType, Raw<sceCardTypes>(Poison), notSupported);
    raises(SerialNumberLength, Poison, notSupported);
    raises(ReaderType, reinterpret_cast<BSTR>(Poison), {-1, L"Encoder is closed", EncoderName});
}

TEST_P(MemberTest, RecordsFieldsCanBeReadAndWritten)
{
    ComPtr<_CError> error;
    EXPECT_EQ(LastError(way, encoder, error.GetAddressOf()), Outcome());
    ASSERT_EQ(error.Get(), record.Get());
    ForEach(NumberFields, [&](const auto& field) {
        LONG value = Poison;
        EXPECT_EQ(field.second(way, *error.Get(), -7), Outcome());
        EXPECT_EQ(field.first(way, *error.Get(), &value), Outcome());
        EXPECT_EQ(value, -7);
    });
    ForEach(TextFields, [&](const auto& field) {
        const std::wstring withNul = std::wstring(L"a\0b", 3) + field.first.Name;
        Text value;
        EXPECT_EQ(field.second(way, *error.Get(), Text(withNul)), Outcome());
        EXPECT_EQ(field.first(way, *error.Get(), value.Variable()), Outcome());
        EXPECT_EQ(value.Characters(), withNul);
        Text empty;
        EXPECT_EQ(field.second(way, *error.Get(), nullptr), Outcome());
        EXPECT_EQ(field.first(way, *error.Get(), empty.Variable()), Outcome());
        EXPECT_EQ(empty.Characters(), L"");
    });
}

TEST_P(MemberTest, ByteIsConvertedBySystemAndItsVariableLeftAlone)
{
    constexpr LONG BadBX = -15;
    struct {
        const char* What;
        Variant Given;
        LONG Number; ///< of the record
        LONG Byte;   ///< on the card, where it was written
    } cases[] = {
        {"left out", Variant(VT_ERROR, DISP_E_PARAMNOTFOUND), NoNumber, 0x69},
        {"another error", Variant(VT_ERROR, E_FAIL), BadBX, 0},
        {"empty", Variant(), NoNumber, 0},
        {"null", Variant(VT_NULL), BadBX, 0},
        {"255", Variant(VT_I4, 255), NoNumber, 255},
        {"256", Variant(VT_I4, 256), BadBX, 0},
        {"-1", Variant(VT_I4, -1), BadBX, 0},
        {"2.5", Variant(2.5), NoNumber, 2},
        {"text 16", Variant(L"16"), NoNumber, 16},
        {"text that is no number", Variant(L"x"), BadBX, 0},
        {"object without a value", Variant(*record.Get()), BadBX, 0},
    };
    LONG card = 0x100 * (1 + static_cast<LONG>(way));
    for (auto& [what, given, number, byte] : cases) {
        SCOPED_TRACE(what);
        Open(encoder, ++card);
        const VARIANT before = given;
        sceReturnCode result{};
        EXPECT_EQ(WriteSectorTrailer(way, encoder, 1, key, KeyTypeA, key, key, 1, keep, keep, keep,
                                     keepTrailer, &given, &result),
                  Outcome());
        EXPECT_EQ(std::memcmp(&before, &given, sizeof(VARIANT)), 0);
        EXPECT_EQ(NumberOf(*record.Get()), number);
        if (number == NoNumber) {
            Text trailer;
            EXPECT_EQ(encoder.ReadDataBloc(7, key, KeyTypeA, trailer.Variable(), &result), S_OK);
            EXPECT_EQ(std::stol(trailer.Characters().substr(18, 2), nullptr, 16), byte);
        }
    }
}

TEST(EncoderTest, HasARecordOfItsOwnThatOutlivesIt)
{
    ComPtr<_Encoder> encoder = NewEncoder();
    const ComPtr<_Encoder> other = NewEncoder();
    const ComPtr<_CError> error = RecordOf(*encoder.Get());
    EXPECT_EQ(RecordOf(*encoder.Get()).Get(), error.Get());
    EXPECT_EQ(References(*error.Get()), 2U);

    Open(*other.Get(), 3);
    sceReturnCode result{};
    EXPECT_EQ(encoder->OpenEncoder(-1, &result), S_OK);
    EXPECT_EQ(result, sceError);
    EXPECT_EQ(encoder.Reset(), 0U);
    EXPECT_EQ(References(*error.Get()), 1U);
    EXPECT_EQ(NumberOf(*error.Get()), -2);
    EXPECT_EQ(NumberOf(*RecordOf(*other.Get()).Get()), NoNumber);
}

// The timer comes while the dialog is open, on its thread, and lets go of the last reference.
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

TEST_P(MemberTest, ConfigureKeepsItsObjectWhileItsDialogIsOpen)
{
    ComPtr<_Encoder> other = NewEncoder();
    const ComPtr<_CError> error = RecordOf(*other.Get());
    InConfigure = other.Detach();
    constexpr UINT pollTime = 20; // milliseconds
    ASSERT_NE(SetTimer(nullptr, 0, pollTime, &ReleaseAndCancel), 0U);
    auto result = Raw<sceReturnCode>(Poison);
    EXPECT_EQ(Configure(way, *InConfigure, Text(L"francais"), &result), Outcome());
    EXPECT_EQ(result, sceCanceled);
    EXPECT_EQ(References(*error.Get()), 1U); // the Encoder, which held it too, has gone
    EXPECT_EQ(FunctionOf(*error.Get()), L"Configure");
}

TEST(ObjectTest, AnswersToItsInterfacesAndRefusesOthers)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    const ComPtr<_CError> error = RecordOf(*encoder.Get());
    const struct {
        IUnknown* Object;
        IID Default;
        IID OfTheOther;
    } objects[] = {
        {encoder.Get(), __uuidof(_Encoder), __uuidof(_CError)},
        {error.Get(), __uuidof(_CError), __uuidof(_Encoder)},
    };
    for (const auto& [object, own, ofTheOther] : objects) {
        const ULONG references = References(*object);
        for (const IID& id : {__uuidof(IUnknown), __uuidof(IDispatch), own, __uuidof(IProvideClassInfo),
                              __uuidof(ISupportErrorInfo)}) {
            ComPtr<IUnknown> answered;
            ComPtr<IUnknown> itself;
            EXPECT_EQ(object->QueryInterface(id, reinterpret_cast<void**>(answered.GetAddressOf())), S_OK);
            EXPECT_EQ(References(*object), references + 1);
            EXPECT_EQ(answered.As(&itself), S_OK);
            EXPECT_EQ(itself.Get(), object);
        }
        for (const IID& id : {ofTheOther, __uuidof(IClassFactory), __uuidof(IPersist)}) {
            auto* refused = reinterpret_cast<void*>(Poison);
            EXPECT_EQ(object->QueryInterface(id, &refused), E_NOINTERFACE);
            EXPECT_EQ(refused, nullptr);
        }
        EXPECT_EQ(object->QueryInterface(own, nullptr), E_POINTER);
        EXPECT_EQ(References(*object), references);

        ComPtr<ISupportErrorInfo> errorInfo;
        ASSERT_EQ(ComPtr<IUnknown>(object).As(&errorInfo), S_OK);
        EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(own), S_OK);
        EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(ofTheOther), S_FALSE);
    }
}

TEST(ObjectTest, DescribesItselfByTheTypeLibrary)
{
    const ComPtr<_Encoder> encoder = NewEncoder();
    const auto idOf = [](ITypeInfo& info) {
        TYPEATTR* attributes = nullptr;
        EXPECT_EQ(info.GetTypeAttr(&attributes), S_OK);
        const GUID id = attributes->guid;
        info.ReleaseTypeAttr(attributes);
        return id;
    };
    UINT count = 0;
    EXPECT_EQ(encoder->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(encoder->GetTypeInfoCount(nullptr), E_POINTER);
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(encoder->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.GetAddressOf()), S_OK);
    EXPECT_EQ(idOf(*info.Get()), __uuidof(_Encoder));
    ComPtr<IProvideClassInfo> provider;
    EXPECT_EQ(encoder.As(&provider), S_OK);
    EXPECT_EQ(provider->GetClassInfo(info.ReleaseAndGetAddressOf()), S_OK);
    EXPECT_EQ(idOf(*info.Get()), __uuidof(Encoder));
    auto* none = reinterpret_cast<ITypeInfo*>(Poison);
    EXPECT_EQ(encoder->GetTypeInfo(1, LOCALE_USER_DEFAULT, &none), DISP_E_BADINDEX);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(encoder->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);

    DISPPARAMS nothing{};
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"WriteDataBloc"), const_cast<LPOLESTR>(L"KeyType")};
    DISPID ids[] = {DISPID_UNKNOWN, DISPID_UNKNOWN};
    EXPECT_EQ(encoder->GetIDsOfNames(IID{}, names, 2, LOCALE_USER_DEFAULT, ids), S_OK);
    EXPECT_EQ(ids[1], 2);
    EXPECT_EQ(encoder->GetIDsOfNames(__uuidof(_Encoder), names, 1, LOCALE_USER_DEFAULT, ids),
              DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(encoder->Invoke(ids[0], __uuidof(_Encoder), LOCALE_USER_DEFAULT, Method, &nothing, nullptr,
                              nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(Invoke(*encoder.Get(), L"NoSuchMember", Method, nullptr, 0, nullptr).Result,
              DISP_E_UNKNOWNNAME);
    EXPECT_EQ(Invoke(*encoder.Get(), L"ReadSerialNumber", Method, nullptr, 0, nullptr).Result,
              DISP_E_BADPARAMCOUNT);
}

} // namespace

} // namespace client
