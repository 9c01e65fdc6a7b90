// The class Encoder of the type library.
#pragma once

#include "boundary/AutomationError.h"
#include "boundary/AutomationObject.h"
#include "encoder/Encoder.h"

#include <ACG_MultiISO_TV.h>
#include <wrl/client.h>

namespace acg
{

/// An Encoder as hosts see it. Members convert their arguments and call it; it does the rest.
class AutomationEncoder final : public AutomationObject<::Encoder, _Encoder>
{
public:
    AutomationEncoder();

    HRESULT STDMETHODCALLTYPE put_Parameters(BSTR Value) override;
    HRESULT STDMETHODCALLTYPE get_Parameters(BSTR* Result) override;
    HRESULT STDMETHODCALLTYPE get_LastError(_CError** Result) override;
    HRESULT STDMETHODCALLTYPE get_EncoderState(::sceEncoderState* Result) override;
    HRESULT STDMETHODCALLTYPE get_ReaderType(BSTR* Result) override;
    HRESULT STDMETHODCALLTYPE get_ATRString(BSTR* Result) override;
    HRESULT STDMETHODCALLTYPE get_CardType(::sceCardTypes* Result) override;
    HRESULT STDMETHODCALLTYPE get_SerialNumberLength(LONG* Result) override;
    HRESULT STDMETHODCALLTYPE GetInformation(BSTR* Result) override;
    HRESULT STDMETHODCALLTYPE Configure(BSTR Language, ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE OpenEncoder(LONG Handle, ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE CloseEncoder(::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE ReadSerialNumber(BSTR* SerialNumber, ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE ReadDataBloc(LONG BlocNumber, BSTR key, unsigned char KeyType,
                                           BSTR* BlocContents, ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE ReadManufacturerCode(BSTR key, unsigned char KeyType, LONG* SerialNumber,
                                                   unsigned char* CheckSum, BSTR* ManufacturerInfo,
                                                   ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE ReadSectorTrailer(LONG SectorNumber, BSTR key, unsigned char KeyType,
                                                unsigned char* KeysUsed, ::SCBS_SecurityLevelEnum* Security0,
                                                ::SCBS_SecurityLevelEnum* Security1,
                                                ::SCBS_SecurityLevelEnum* Security2,
                                                ::SCSS_SecurityLevelEnum* Conditions, unsigned char* BX,
                                                ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE WriteDataBloc(LONG BlocNumber, BSTR key, unsigned char KeyType,
                                            BSTR* BlocContents, ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE WriteValueBloc(LONG BlocNumber, BSTR key, unsigned char KeyType, LONG value,
                                             ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE WriteSectorTrailer(LONG SectorNumber, BSTR key, unsigned char KeyType,
                                                 BSTR KeyA, BSTR KeyB, unsigned char KeysToUse,
                                                 ::SCBS_SecurityLevelEnum Security0,
                                                 ::SCBS_SecurityLevelEnum Security1,
                                                 ::SCBS_SecurityLevelEnum Security2,
                                                 ::SCSS_SecurityLevelEnum Conditions, VARIANT* BX,
                                                 ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE WriteBytesInBloc(LONG BlocNumber, BSTR key, unsigned char KeyType,
                                               unsigned char FromByte, unsigned char ToByte,
                                               BSTR* BlocContents, ::sceReturnCode* Result) override;
    HRESULT STDMETHODCALLTYPE ReOpenEncoder() override;

private:
    Encoder m_encoder;
    Microsoft::WRL::ComPtr<_CError> m_lastError; ///< the one object for the one record
};

} // namespace acg
