// A client of the component: it knows the type library's declarations, and nothing of the component's
// sources.
#pragma once

#include <ACG_MultiISO_TV.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <oleauto.h>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <wrl/client.h>

namespace client
{

using Microsoft::WRL::ComPtr;

constexpr const wchar_t* EncoderName = L"ACG_MultiISO_TV.Encoder";
constexpr const wchar_t* ErrorName = L"ACG_MultiISO_TV.CError";

/// What a variable holds that the component has to fill or to leave alone.
constexpr LONG Poison = 0x5A5A5A5A;

/// A number as an enum that has no such value.
template <class Enum>
Enum Raw(LONG number)
{
    Enum value{};
    std::memcpy(&value, &number, sizeof(value));
    return value;
}

/// A text that the client owns.
class Text
{
public:
    Text() = default;
    explicit Text(const std::wstring& characters)
        : m_text(SysAllocStringLen(characters.data(), static_cast<UINT>(characters.size())))
    {
    }
    ~Text() { SysFreeString(m_text); }
    void Set(const wchar_t* characters) { SysFreeString(std::exchange(m_text, SysAllocString(characters))); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    operator BSTR() const { return m_text; }
    BSTR* Variable() { return &m_text; }
    [[nodiscard]] std::wstring Characters() const { return {m_text, m_text + SysStringLen(m_text)}; }

private:
    BSTR m_text = nullptr;
};

inline std::wstring TakeText(BSTR text)
{
    Text owner;
    *owner.Variable() = text;
    return owner.Characters();
}

struct Variant : VARIANT {
    explicit Variant(VARENUM type = VT_EMPTY, LONG value = 0) : VARIANT{}
    {
        V_VT(this) = static_cast<VARTYPE>(type);
        V_I4(this) = value;
    }
    explicit Variant(double value) : Variant(VT_R8) { V_R8(this) = value; }
    explicit Variant(const wchar_t* text) : Variant(VT_BSTR) { V_BSTR(this) = SysAllocString(text); }
    explicit Variant(IDispatch& object) : Variant(VT_DISPATCH)
    {
        object.AddRef();
        V_DISPATCH(this) = &object;
    }
    ~Variant() { VariantClear(this); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
};

/// How a call ended. All ways of calling tell the same.
struct Outcome {
    HRESULT Result = S_OK;
    std::wstring Description;
    std::wstring Source;

    bool operator==(const Outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Outcome& outcome)
{
    return out << std::hex << outcome.Result << ' ' << testing::PrintToString(outcome.Description) << ' '
               << testing::PrintToString(outcome.Source);
}

inline Outcome WithErrorInfo(HRESULT result)
{
    Outcome outcome{.Result = result};
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.GetAddressOf()) == S_OK) {
        BSTR text = nullptr;
        info->GetDescription(&text);
        outcome.Description = TakeText(text);
        info->GetSource(&text);
        outcome.Source = TakeText(text);
    }
    return outcome;
}

/// While the component works, and not the client.
inline bool InCall = false;

/// Calls a member by its name. Kind: DISPATCH_METHOD and its like. The arguments stand in reverse order.
inline Outcome Invoke(IDispatch& object, const wchar_t* name, WORD kind, VARIANTARG* reversed, UINT count,
                      VARIANT* result, UINT* badArgument = nullptr)
{
    auto* names = const_cast<LPOLESTR>(name);
    DISPID id = DISPID_UNKNOWN;
    const HRESULT found = object.GetIDsOfNames(IID{}, &names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(found)) {
        return {.Result = found};
    }
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS arguments{.rgvarg = reversed, .cArgs = count};
    if (kind == DISPATCH_PROPERTYPUT) {
        arguments.rgdispidNamedArgs = &put;
        arguments.cNamedArgs = 1;
    }
    EXCEPINFO exception{};
    InCall = true;
    const HRESULT called =
        object.Invoke(id, IID{}, LOCALE_USER_DEFAULT, kind, &arguments, result, &exception, badArgument);
    InCall = false;
    if (called != DISP_E_EXCEPTION) {
        return {.Result = called};
    }
    return {exception.scode, TakeText(exception.bstrDescription), TakeText(exception.bstrSource)};
}

constexpr VARTYPE VariantReference = VT_BYREF | VT_VARIANT;

/// An argument as a caller by name hands it over: a pointer as a reference of its type.
template <class Formal>
VARIANTARG AsVariant(Formal argument)
{
    VARIANTARG variant{};
    if constexpr (std::is_same_v<Formal, BSTR>) {
        V_VT(&variant) = VT_BSTR;
        V_BSTR(&variant) = argument;
    } else if constexpr (std::is_pointer_v<Formal>) {
        constexpr VARTYPE number = sizeof(*argument) == 1 ? VT_UI1 : VT_I4;
        V_VT(&variant) = std::is_same_v<Formal, VARIANT*>    ? VariantReference
                         : std::is_same_v<Formal, BSTR*>     ? VT_BYREF | VT_BSTR
                         : std::is_same_v<Formal, _CError**> ? VT_BYREF | VT_DISPATCH
                                                             : VT_BYREF | number;
        V_BYREF(&variant) = argument;
    } else {
        V_VT(&variant) = sizeof(Formal) == 1 ? VT_UI1 : VT_I4;
        V_I4(&variant) = static_cast<LONG>(argument);
    }
    return variant;
}

/// Puts what a call by name has given into the variable that a caller by slot would have named.
inline void TakeOver(VARIANT& given, const VARIANTARG& variable)
{
    if (V_ISBYREF(&variable) && V_VT(&variable) != VariantReference) {
        EXPECT_EQ(V_VT(&given) | VT_BYREF, V_VT(&variable));
        auto* const value = reinterpret_cast<unsigned char*>(&V_BYREF(&given));
        std::swap_ranges(value, value + (V_VT(&given) == VT_UI1 ? 1 : sizeof(LONG)),
                         static_cast<unsigned char*>(V_BYREF(&variable)));
    }
}

enum class Way {
    BySlot,
    ByName,   ///< with arguments and references of the declared types, as C++ and compiled Basic do
    AsScript, ///< by name, and every argument a reference to a variant
};

/// A member that is called in every way with one and the same list of arguments, the variable of the result
/// last. A null VARIANT* is left out by name.
template <class Interface, class... Formal>
struct Member {
    const wchar_t* Name;
    WORD Kind;
    HRESULT (STDMETHODCALLTYPE Interface::*Slot)(Formal...);

    static constexpr size_t Count = sizeof...(Formal);

    Outcome operator()(Way way, Interface& object, std::type_identity_t<Formal>... arguments) const
    {
        if (way == Way::BySlot) {
            SetErrorInfo(0, nullptr);
            InCall = true;
            const HRESULT result = (object.*Slot)(arguments...);
            InCall = false;
            return WithErrorInfo(result);
        }
        std::array<VARIANTARG, Count + 1> typed{}; // in reverse order; never empty
        size_t at = Count;
        ((typed[--at] = AsVariant<Formal>(arguments)), ...);
        const size_t results = Count > 0 && Kind != DISPATCH_PROPERTYPUT ? 1 : 0;
        const size_t leftOut = Count > results && V_VT(&typed[results]) == VariantReference &&
                               V_BYREF(&typed[results]) == nullptr;

        std::array<Variant, Count + 1> variables;
        std::array<VARIANTARG, Count + 1> given = typed;
        for (at = results + leftOut; way == Way::AsScript && at < Count; ++at) {
            if (V_VT(&typed[at]) != VariantReference) {
                EXPECT_EQ(VariantCopyInd(&variables[at], &typed[at]), S_OK);
                given[at] = AsVariant<VARIANT*>(&variables[at]);
            }
        }
        Variant result;
        const Outcome outcome =
            Invoke(object, Name, Kind, &given[results + leftOut],
                   static_cast<UINT>(Count - results - leftOut), results ? &result : nullptr);
        if (SUCCEEDED(outcome.Result)) {
            if (results > 0) {
                TakeOver(result, typed[0]);
            }
            for (at = results + leftOut; way == Way::AsScript && at < Count; ++at) {
                TakeOver(variables[at], typed[at]);
            }
        }
        return outcome;
    }
};

template <class Interface, class... Formal>
Member(const wchar_t*, WORD, HRESULT (STDMETHODCALLTYPE Interface::*)(Formal...))
    -> Member<Interface, Formal...>;

constexpr WORD Method = DISPATCH_METHOD;
constexpr WORD Get = DISPATCH_PROPERTYGET;
constexpr WORD Put = DISPATCH_PROPERTYPUT;

inline constexpr Member PutParameters{L"Parameters", Put, &_Encoder::put_Parameters};
inline constexpr Member GetParameters{L"Parameters", Get, &_Encoder::get_Parameters};
inline constexpr Member LastError{L"LastError", Get, &_Encoder::get_LastError};
inline constexpr Member EncoderState{L"EncoderState", Get, &_Encoder::get_EncoderState};
inline constexpr Member ReaderType{L"ReaderType", Get, &_Encoder::get_ReaderType};
inline constexpr Member ATRString{L"ATRString", Get, &_Encoder::get_ATRString};
inline constexpr Member CardType{L"CardType", Get, &_Encoder::get_CardType};
inline constexpr Member SerialNumberLength{L"SerialNumberLength", Get, &_Encoder::get_SerialNumberLength};
inline constexpr Member GetInformation{L"GetInformation", Method, &_Encoder::GetInformation};
inline constexpr Member Configure{L"Configure", Method, &_Encoder::Configure};
inline constexpr Member OpenEncoder{L"OpenEncoder", Method, &_Encoder::OpenEncoder};
inline constexpr Member CloseEncoder{L"CloseEncoder", Method, &_Encoder::CloseEncoder};
inline constexpr Member ReadSerialNumber{L"ReadSerialNumber", Method, &_Encoder::ReadSerialNumber};
inline constexpr Member ReadDataBloc{L"ReadDataBloc", Method, &_Encoder::ReadDataBloc};
inline constexpr Member ReadManufacturerCode{L"ReadManufacturerCode", Method,
                                             &_Encoder::ReadManufacturerCode};
inline constexpr Member ReadSectorTrailer{L"ReadSectorTrailer", Method, &_Encoder::ReadSectorTrailer};
inline constexpr Member WriteDataBloc{L"WriteDataBloc", Method, &_Encoder::WriteDataBloc};
inline constexpr Member WriteValueBloc{L"WriteValueBloc", Method, &_Encoder::WriteValueBloc};
inline constexpr Member WriteSectorTrailer{L"WriteSectorTrailer", Method, &_Encoder::WriteSectorTrailer};
inline constexpr Member WriteBytesInBloc{L"WriteBytesInBloc", Method, &_Encoder::WriteBytesInBloc};
inline constexpr Member ReOpenEncoder{L"ReOpenEncoder", Method, &_Encoder::ReOpenEncoder};

/// All of them but Configure, which waits for a person, and ReOpenEncoder, which has no arguments.
inline constexpr std::tuple EncoderMembers(PutParameters, GetParameters, LastError, EncoderState, ReaderType,
                                           ATRString, CardType, SerialNumberLength, GetInformation,
                                           OpenEncoder, CloseEncoder, ReadSerialNumber, ReadDataBloc,
                                           ReadManufacturerCode, ReadSectorTrailer, WriteDataBloc,
                                           WriteValueBloc, WriteSectorTrailer, WriteBytesInBloc);

/// The fields of a record: how each is read, and how it is written.
inline constexpr std::tuple NumberFields(std::pair(Member{L"Number", Get, &_CError::get_Number},
                                                   Member{L"Number", Put, &_CError::put_Number}),
                                         std::pair(Member{L"LastDllError", Get, &_CError::get_LastDllError},
                                                   Member{L"LastDllError", Put, &_CError::put_LastDllError}));
inline constexpr std::tuple TextFields(std::pair(Member{L"Description", Get, &_CError::get_Description},
                                                 Member{L"Description", Put, &_CError::put_Description}),
                                       std::pair(Member{L"ComFunction", Get, &_CError::get_ComFunction},
                                                 Member{L"ComFunction", Put, &_CError::put_ComFunction}),
                                       std::pair(Member{L"RdrCommand", Get, &_CError::get_RdrCommand},
                                                 Member{L"RdrCommand", Put, &_CError::put_RdrCommand}),
                                       std::pair(Member{L"RdrRetCode", Get, &_CError::get_RdrRetCode},
                                                 Member{L"RdrRetCode", Put, &_CError::put_RdrRetCode}));

template <class Tuple, class Body>
void ForEach(const Tuple& all, const Body& body)
{
    std::apply([&](const auto&... one) { (body(one), ...); }, all);
}

// On the simulated reader.

constexpr LONG NoNumber = 0;
constexpr unsigned char KeyTypeA = 1;
const wchar_t* const FactoryKey = L"FFFFFFFFFFFF";

inline ComPtr<_Encoder> NewEncoder()
{
    CLSID id{};
    EXPECT_EQ(CLSIDFromProgID(EncoderName, &id), S_OK);
    ComPtr<_Encoder> encoder;
    EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(_Encoder),
                               reinterpret_cast<void**>(encoder.GetAddressOf())),
              S_OK);
    return encoder;
}

inline ComPtr<_CError> RecordOf(_Encoder& encoder)
{
    ComPtr<_CError> error;
    EXPECT_EQ(encoder.get_LastError(error.GetAddressOf()), S_OK);
    return error;
}

inline LONG NumberOf(_CError& error)
{
    LONG number = Poison;
    EXPECT_EQ(error.get_Number(&number), S_OK);
    return number;
}

inline std::wstring FunctionOf(_CError& error)
{
    Text name;
    EXPECT_EQ(error.get_ComFunction(name.Variable()), S_OK);
    return name.Characters();
}

/// A device with a card of its own, as cards last as long as the process.
inline std::wstring ParametersFor(LONG card)
{
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"Device=com1,uid=%08lX", card);
    return text;
}

/// The number that OpenEncoder asks for: the fifth field.
inline LONG HandleNumber(const std::wstring& information)
{
    size_t from = 0;
    for (int field = 1; field < 5; ++field) {
        from = information.find(L'|', from) + 1;
    }
    return std::stol(information.substr(from));
}

inline void Open(_Encoder& encoder, LONG card)
{
    ASSERT_EQ(encoder.put_Parameters(Text(ParametersFor(card))), S_OK);
    Text information;
    ASSERT_EQ(encoder.GetInformation(information.Variable()), S_OK);
    sceReturnCode result = sceError;
    ASSERT_EQ(encoder.OpenEncoder(HandleNumber(information.Characters()), &result), S_OK);
    ASSERT_EQ(result, sceSuccess);
}

inline ULONG References(IUnknown& object)
{
    object.AddRef();
    return object.Release();
}

} // namespace client
