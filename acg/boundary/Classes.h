// The classes Encoder and CError of the type library.
#pragma once

#include "acg/boundary/AutomationObject.h"
#include "acg/dialogs/frmConfigure.h"
#include "acg/encoder/CError.h"
#include "acg/encoder/Encoder.h"

#include <ACG_MultiISO_TV.h>
#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace acg
{

// The type library declares the enums for hosts; the class has its own.
constexpr bool SameValues(std::initializer_list<int32_t> forHosts, std::initializer_list<int32_t> ofTheClass)
{
    return std::ranges::equal(forHosts, ofTheClass);
}
static_assert(SameValues({::sceSuccess, ::sceCanceled, ::sceError}, {sceSuccess, sceCanceled, sceError}));
static_assert(SameValues({::sceUnknown, ::sceClosed, ::sceOpened, ::sceReady},
                         {sceUnknown, sceClosed, sceOpened, sceReady}));
static_assert(SameValues({::sceUnhandled, ::sceUnknownType, ::sceMifare1K, ::sceMifare4K,
                          ::sceMifareUltralight, ::sceDESFire, ::sceRfid125KHz, ::scePicoPass2KS},
                         {sceUnhandled, sceUnknownType, sceMifare1K, sceMifare4K, sceMifareUltralight,
                          sceDESFire, sceRfid125KHz, scePicoPass2KS}));
static_assert(SameValues({::scbs_A_Nothing, ::scbs_A_Read, ::scbs_A_Write, ::scbs_A_ReadWrite},
                         {scbs_A_Nothing, scbs_A_Read, scbs_A_Write, scbs_A_ReadWrite}));
static_assert(SameValues({::scbs_B_Nothing, ::scbs_B_Read, ::scbs_B_Write, ::scbs_B_ReadWrite},
                         {scbs_B_Nothing, scbs_B_Read, scbs_B_Write, scbs_B_ReadWrite}));
static_assert(
    SameValues({::scss_A_Nothing, ::scss_A_WriteKeys, ::scss_A_WriteConditions, ::scss_A_WriteKeysConditions},
               {scss_A_Nothing, scss_A_WriteKeys, scss_A_WriteConditions, scss_A_WriteKeysConditions}));
static_assert(
    SameValues({::scss_B_Nothing, ::scss_B_WriteKeys, ::scss_B_WriteConditions, ::scss_B_WriteKeysConditions},
               {scss_B_Nothing, scss_B_WriteKeys, scss_B_WriteConditions, scss_B_WriteKeysConditions}));

/// A record as hosts see it: its fields, and nothing else.
class AutomationError final : public AutomationObject<::CError, _CError>
{
public:
    AutomationError() : AutomationError(std::make_shared<CError>()) {}
    explicit AutomationError(std::shared_ptr<CError> record) : m_record(std::move(record)) {}

    STDMETHODIMP get_Number(LONG* Value) override { return Get(&CError::Number, Value); }
    STDMETHODIMP put_Number(LONG Value) override { return Put(&CError::Number, Value); }
    STDMETHODIMP get_Description(BSTR* Value) override { return Get(&CError::Description, Value); }
    STDMETHODIMP put_Description(BSTR Value) override { return Put(&CError::Description, Value); }
    STDMETHODIMP get_LastDllError(LONG* Value) override { return Get(&CError::LastDllError, Value); }
    STDMETHODIMP put_LastDllError(LONG Value) override { return Put(&CError::LastDllError, Value); }
    STDMETHODIMP get_ComFunction(BSTR* Value) override { return Get(&CError::ComFunction, Value); }
    STDMETHODIMP put_ComFunction(BSTR Value) override { return Put(&CError::ComFunction, Value); }
    STDMETHODIMP get_RdrCommand(BSTR* Value) override { return Get(&CError::RdrCommand, Value); }
    STDMETHODIMP put_RdrCommand(BSTR Value) override { return Put(&CError::RdrCommand, Value); }
    STDMETHODIMP get_RdrRetCode(BSTR* Value) override { return Get(&CError::RdrRetCode, Value); }
    STDMETHODIMP put_RdrRetCode(BSTR Value) override { return Put(&CError::RdrRetCode, Value); }

private:
    template <class Field, class Callers>
    HRESULT Get(Field CError::*field, Callers* result)
    {
        return CallWithResult(result, [&]() -> const Field& { return (*m_record).*field; });
    }
    HRESULT Put(int32_t CError::*field, LONG value)
    {
        return Run([&] { (*m_record).*field = value; });
    }
    HRESULT Put(std::wstring CError::*field, BSTR value)
    {
        return Run([&] { (*m_record).*field = ViewOf(value); });
    }

    const std::shared_ptr<CError> m_record;
};

/// An Encoder as hosts see it. Members convert their arguments and call the class.
class AutomationEncoder final : public AutomationObject<::Encoder, _Encoder>
{
public:
    AutomationEncoder()
    {
        // Thread-local memory that can't be allocated ends the process. So this thread's is allocated here,
        // not when a dialog is shown.
        static_cast<void>(frmConfigure::OfThread());
        static_cast<void>(frmTest::OfThread());
        // Takes over the first reference. Attach doesn't in every version of the system's headers.
        *m_lastError.GetAddressOf() = new AutomationError(m_encoder.LastError());
    }

    STDMETHODIMP put_Parameters(BSTR Value) override
    {
        return Run([&] { m_encoder.Parameters(std::wstring(ViewOf(Value))); });
    }
    STDMETHODIMP get_Parameters(BSTR* Result) override
    {
        return CallWithResult(Result, [&] { return m_encoder.Parameters(); });
    }
    STDMETHODIMP get_LastError(_CError** Result) override
    {
        return CallWithResult(Result, [&] { return Microsoft::WRL::ComPtr<_CError>(m_lastError).Detach(); });
    }
    STDMETHODIMP get_EncoderState(::sceEncoderState* Result) override
    {
        return Get(&Encoder::EncoderState, Result);
    }
    STDMETHODIMP get_ReaderType(BSTR* Result) override { return Get(&Encoder::ReaderType, Result); }
    STDMETHODIMP get_ATRString(BSTR* Result) override { return Get(&Encoder::ATRString, Result); }
    STDMETHODIMP get_CardType(::sceCardTypes* Result) override { return Get(&Encoder::CardType, Result); }
    STDMETHODIMP get_SerialNumberLength(LONG* Result) override
    {
        return Get(&Encoder::SerialNumberLength, Result);
    }
    STDMETHODIMP GetInformation(BSTR* Result) override { return Get(&Encoder::GetInformation, Result); }
    STDMETHODIMP Configure(BSTR Language, ::sceReturnCode* Result) override
    {
        return CallWithResult(Result, [&] { return m_encoder.Configure(std::wstring(ViewOf(Language))); });
    }
    STDMETHODIMP OpenEncoder(LONG Handle, ::sceReturnCode* Result) override
    {
        return CallWithResult(Result, [&] { return m_encoder.OpenEncoder(Handle); });
    }
    STDMETHODIMP CloseEncoder(::sceReturnCode* Result) override
    {
        return Get(&Encoder::CloseEncoder, Result);
    }
    STDMETHODIMP ReadSerialNumber(BSTR* SerialNumber, ::sceReturnCode* Result) override
    {
        const auto read = [&](std::wstring& text) { return m_encoder.ReadSerialNumber(text); };
        return CallWithResult(Result, read, SerialNumber);
    }
    STDMETHODIMP ReadDataBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, BSTR* BlocContents,
                              ::sceReturnCode* Result) override
    {
        const auto read = [&](std::wstring& contents) {
            return m_encoder.ReadDataBloc(BlocNumber, ViewOf(key), KeyType, contents);
        };
        return CallWithResult(Result, read, BlocContents);
    }
    STDMETHODIMP ReadManufacturerCode(BSTR key, unsigned char KeyType, LONG* SerialNumber,
                                      unsigned char* CheckSum, BSTR* ManufacturerInfo,
                                      ::sceReturnCode* Result) override
    {
        const auto read = [&](std::wstring& info, int32_t& serialNumber, uint8_t& checkSum) {
            return m_encoder.ReadManufacturerCode(ViewOf(key), KeyType, serialNumber, checkSum, info);
        };
        return CallWithResult(Result, read, ManufacturerInfo, SerialNumber, CheckSum);
    }
    STDMETHODIMP ReadSectorTrailer(LONG SectorNumber, BSTR key, unsigned char KeyType,
                                   unsigned char* KeysUsed, ::SCBS_SecurityLevelEnum* Security0,
                                   ::SCBS_SecurityLevelEnum* Security1, ::SCBS_SecurityLevelEnum* Security2,
                                   ::SCSS_SecurityLevelEnum* Conditions, unsigned char* BX,
                                   ::sceReturnCode* Result) override
    {
        const auto read = [&](auto&... parts) {
            return m_encoder.ReadSectorTrailer(SectorNumber, ViewOf(key), KeyType, parts...);
        };
        return CallWithResult(Result, read, KeysUsed, Security0, Security1, Security2, Conditions, BX);
    }
    STDMETHODIMP WriteDataBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, BSTR* BlocContents,
                               ::sceReturnCode* Result) override
    {
        const auto write = [&](std::wstring& contents) {
            return m_encoder.WriteDataBloc(BlocNumber, ViewOf(key), KeyType, contents);
        };
        return CallWithResult(Result, write, BlocContents);
    }
    STDMETHODIMP WriteValueBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, LONG value,
                                ::sceReturnCode* Result) override
    {
        return CallWithResult(
            Result, [&] { return m_encoder.WriteValueBloc(BlocNumber, ViewOf(key), KeyType, value); });
    }
    STDMETHODIMP WriteSectorTrailer(LONG SectorNumber, BSTR key, unsigned char KeyType, BSTR KeyA, BSTR KeyB,
                                    unsigned char KeysToUse, ::SCBS_SecurityLevelEnum Security0,
                                    ::SCBS_SecurityLevelEnum Security1, ::SCBS_SecurityLevelEnum Security2,
                                    ::SCSS_SecurityLevelEnum Conditions, VARIANT* BX,
                                    ::sceReturnCode* Result) override
    {
        const auto write = [&] {
            return m_encoder.WriteSectorTrailer(
                SectorNumber, ViewOf(key), KeyType, ViewOf(KeyA), ViewOf(KeyB), KeysToUse,
                static_cast<SCBS_SecurityLevelEnum>(Security0),
                static_cast<SCBS_SecurityLevelEnum>(Security1),
                static_cast<SCBS_SecurityLevelEnum>(Security2),
                static_cast<SCSS_SecurityLevelEnum>(Conditions), ConvertToByte(BX));
        };
        return CallWithResult(Result, write);
    }
    STDMETHODIMP WriteBytesInBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, unsigned char FromByte,
                                  unsigned char ToByte, BSTR* BlocContents, ::sceReturnCode* Result) override
    {
        const auto write = [&](std::wstring& contents) {
            return m_encoder.WriteBytesInBloc(BlocNumber, ViewOf(key), KeyType, FromByte, ToByte, contents);
        };
        return CallWithResult(Result, write, BlocContents);
    }
    STDMETHODIMP ReOpenEncoder() override
    {
        return Run([&] { m_encoder.ReOpenEncoder(); });
    }

private:
    template <class Own, class Callers>
    HRESULT Get(Own (Encoder::*member)(), Callers* result)
    {
        return CallWithResult(result, [&] { return (m_encoder.*member)(); });
    }

    Encoder m_encoder;
    Microsoft::WRL::ComPtr<_CError> m_lastError; ///< the one object for the one record
};

} // namespace acg
