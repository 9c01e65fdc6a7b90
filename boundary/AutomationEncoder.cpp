#include "boundary/AutomationEncoder.h"

#include <algorithm>

namespace acg
{

namespace
{

// The type library spells the enums out for hosts; the class has its own.
constexpr bool Same(std::initializer_list<int32_t> forHosts, std::initializer_list<int32_t> ofTheClass)
{
    return std::ranges::equal(forHosts, ofTheClass);
}
static_assert(Same({::sceSuccess, ::sceCanceled, ::sceError}, {sceSuccess, sceCanceled, sceError}));
static_assert(Same({::sceUnknown, ::sceClosed, ::sceOpened, ::sceReady},
                   {sceUnknown, sceClosed, sceOpened, sceReady}));
static_assert(Same({::sceUnhandled, ::sceUnknownType, ::sceMifare1K, ::sceMifare4K, ::sceMifareUltralight,
                    ::sceDESFire, ::sceRfid125KHz, ::scePicoPass2KS},
                   {sceUnhandled, sceUnknownType, sceMifare1K, sceMifare4K, sceMifareUltralight, sceDESFire,
                    sceRfid125KHz, scePicoPass2KS}));
static_assert(Same({::scbs_A_Nothing, ::scbs_A_Read, ::scbs_A_Write, ::scbs_A_ReadWrite},
                   {scbs_A_Nothing, scbs_A_Read, scbs_A_Write, scbs_A_ReadWrite}));
static_assert(Same({::scbs_B_Nothing, ::scbs_B_Read, ::scbs_B_Write, ::scbs_B_ReadWrite},
                   {scbs_B_Nothing, scbs_B_Read, scbs_B_Write, scbs_B_ReadWrite}));
static_assert(Same({::scss_A_Nothing, ::scss_A_WriteKeys, ::scss_A_WriteConditions,
                    ::scss_A_WriteKeysConditions},
                   {scss_A_Nothing, scss_A_WriteKeys, scss_A_WriteConditions, scss_A_WriteKeysConditions}));
static_assert(Same({::scss_B_Nothing, ::scss_B_WriteKeys, ::scss_B_WriteConditions,
                    ::scss_B_WriteKeysConditions},
                   {scss_B_Nothing, scss_B_WriteKeys, scss_B_WriteConditions, scss_B_WriteKeysConditions}));

/// Texts stand first: where there is no memory for one, no variable has changed.
template <class... Variables>
void GiveBack(Variables&... variables)
{
    (variables.GiveBack(), ...);
}

} // namespace

using Incoming = TextVariable::Incoming;

AutomationEncoder::AutomationEncoder()
{
    // Its first reference is taken over, which Attach doesn't do in every version of the system's headers.
    *m_lastError.GetAddressOf() = new AutomationError(m_encoder.LastError());
}

HRESULT AutomationEncoder::put_Parameters(BSTR Value)
{
    return Do([&] { m_encoder.Parameters(std::wstring(TextOf(Value))); });
}

HRESULT AutomationEncoder::get_Parameters(BSTR* Result)
{
    return Answer(Result, [&] { return m_encoder.Parameters(); });
}

HRESULT AutomationEncoder::get_LastError(_CError** Result)
{
    return Answer(Result, [&] { return Microsoft::WRL::ComPtr<_CError>(m_lastError).Detach(); });
}

HRESULT AutomationEncoder::get_EncoderState(::sceEncoderState* Result)
{
    return Answer(Result, [&] { return m_encoder.EncoderState(); });
}

HRESULT AutomationEncoder::get_ReaderType(BSTR* Result)
{
    return Answer(Result, [&] { return m_encoder.ReaderType(); });
}

HRESULT AutomationEncoder::get_ATRString(BSTR* Result)
{
    return Answer(Result, [&] { return m_encoder.ATRString(); });
}

HRESULT AutomationEncoder::get_CardType(::sceCardTypes* Result)
{
    return Answer(Result, [&] { return m_encoder.CardType(); });
}

HRESULT AutomationEncoder::get_SerialNumberLength(LONG* Result)
{
    return Answer(Result, [&] { return m_encoder.SerialNumberLength(); });
}

HRESULT AutomationEncoder::GetInformation(BSTR* Result)
{
    return Answer(Result, [&] { return m_encoder.GetInformation(); });
}

HRESULT AutomationEncoder::Configure(BSTR Language, ::sceReturnCode* Result)
{
    return Answer(Result, [&] { return m_encoder.Configure(std::wstring(TextOf(Language))); });
}

HRESULT AutomationEncoder::OpenEncoder(LONG Handle, ::sceReturnCode* Result)
{
    return Answer(Result, [&] { return m_encoder.OpenEncoder(Handle); });
}

HRESULT AutomationEncoder::CloseEncoder(::sceReturnCode* Result)
{
    return Answer(Result, [&] { return m_encoder.CloseEncoder(); });
}

HRESULT AutomationEncoder::ReadSerialNumber(BSTR* SerialNumber, ::sceReturnCode* Result)
{
    return Answer(Result, [&] {
        TextVariable serialNumber(SerialNumber, Incoming::Ignored);
        const sceReturnCode result = m_encoder.ReadSerialNumber(serialNumber);
        serialNumber.GiveBack();
        return result;
    });
}

HRESULT AutomationEncoder::ReadDataBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, BSTR* BlocContents,
                                        ::sceReturnCode* Result)
{
    return Answer(Result, [&] {
        TextVariable contents(BlocContents, Incoming::Read); // it stays where no card was selected
        const sceReturnCode result = m_encoder.ReadDataBloc(BlocNumber, TextOf(key), KeyType, contents);
        contents.GiveBack();
        return result;
    });
}

HRESULT AutomationEncoder::ReadManufacturerCode(BSTR key, unsigned char KeyType, LONG* SerialNumber,
                                                unsigned char* CheckSum, BSTR* ManufacturerInfo,
                                                ::sceReturnCode* Result)
{
    return Answer(Result, [&] {
        auto serialNumber = Number<int32_t>(SerialNumber);
        auto checkSum = Number<uint8_t>(CheckSum);
        TextVariable info(ManufacturerInfo, Incoming::Ignored);
        const sceReturnCode result =
            m_encoder.ReadManufacturerCode(TextOf(key), KeyType, serialNumber, checkSum, info);
        GiveBack(info, serialNumber, checkSum);
        return result;
    });
}

HRESULT AutomationEncoder::ReadSectorTrailer(LONG SectorNumber, BSTR key, unsigned char KeyType,
                                             unsigned char* KeysUsed, ::SCBS_SecurityLevelEnum* Security0,
                                             ::SCBS_SecurityLevelEnum* Security1,
                                             ::SCBS_SecurityLevelEnum* Security2,
                                             ::SCSS_SecurityLevelEnum* Conditions, unsigned char* BX,
                                             ::sceReturnCode* Result)
{
    return Answer(Result, [&] {
        auto keysUsed = Number<uint8_t>(KeysUsed);
        auto security0 = Number<SCBS_SecurityLevelEnum>(Security0);
        auto security1 = Number<SCBS_SecurityLevelEnum>(Security1);
        auto security2 = Number<SCBS_SecurityLevelEnum>(Security2);
        auto conditions = Number<SCSS_SecurityLevelEnum>(Conditions);
        auto bx = Number<uint8_t>(BX);
        const sceReturnCode result = m_encoder.ReadSectorTrailer(
            SectorNumber, TextOf(key), KeyType, keysUsed, security0, security1, security2, conditions, bx);
        GiveBack(keysUsed, security0, security1, security2, conditions, bx);
        return result;
    });
}

HRESULT AutomationEncoder::WriteDataBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, BSTR* BlocContents,
                                         ::sceReturnCode* Result)
{
    return Answer(Result, [&] {
        TextVariable contents(BlocContents, Incoming::Read);
        const sceReturnCode result = m_encoder.WriteDataBloc(BlocNumber, TextOf(key), KeyType, contents);
        contents.GiveBack();
        return result;
    });
}

HRESULT AutomationEncoder::WriteValueBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, LONG value,
                                          ::sceReturnCode* Result)
{
    return Answer(Result, [&] { return m_encoder.WriteValueBloc(BlocNumber, TextOf(key), KeyType, value); });
}

HRESULT AutomationEncoder::WriteSectorTrailer(LONG SectorNumber, BSTR key, unsigned char KeyType, BSTR KeyA,
                                              BSTR KeyB, unsigned char KeysToUse,
                                              ::SCBS_SecurityLevelEnum Security0,
                                              ::SCBS_SecurityLevelEnum Security1,
                                              ::SCBS_SecurityLevelEnum Security2,
                                              ::SCSS_SecurityLevelEnum Conditions, VARIANT* BX,
                                              ::sceReturnCode* Result)
{
    return Answer(Result, [&] {
        return m_encoder.WriteSectorTrailer(SectorNumber, TextOf(key), KeyType, TextOf(KeyA), TextOf(KeyB),
                                            KeysToUse, static_cast<SCBS_SecurityLevelEnum>(Security0),
                                            static_cast<SCBS_SecurityLevelEnum>(Security1),
                                            static_cast<SCBS_SecurityLevelEnum>(Security2),
                                            static_cast<SCSS_SecurityLevelEnum>(Conditions), ByteOf(BX));
    });
}

HRESULT AutomationEncoder::WriteBytesInBloc(LONG BlocNumber, BSTR key, unsigned char KeyType,
                                            unsigned char FromByte, unsigned char ToByte, BSTR* BlocContents,
                                            ::sceReturnCode* Result)
{
    return Answer(Result, [&] {
        TextVariable contents(BlocContents, Incoming::Read);
        const sceReturnCode result =
            m_encoder.WriteBytesInBloc(BlocNumber, TextOf(key), KeyType, FromByte, ToByte, contents);
        contents.GiveBack();
        return result;
    });
}

HRESULT AutomationEncoder::ReOpenEncoder()
{
    return Do([&] { m_encoder.ReOpenEncoder(); });
}

} // namespace acg
