// Creation, destruction, the record of the last failure, and the read-only properties.
#include "acg/encoder/Encoder.h"

#include "acg/encoder/Failures.h"

#include <utility>

namespace acg
{

Encoder::Encoder() : Encoder(ReaderDLL(), std::chrono::steady_clock::now) {}

Encoder::Encoder(ReaderDLL reader, Clock clock)
    : m_oReaderDLL(std::move(reader)), m_oClock(std::move(clock)),
      m_oRandom(static_cast<std::minstd_rand::result_type>(m_oClock().time_since_epoch().count()))
{
    DrawHandleNumber();
    ResetLastError();
}

Encoder::~Encoder()
{
    ReleaseDevice();
}

std::shared_ptr<CError> Encoder::LastError()
{
    return m_oLastError;
}

sceEncoderState Encoder::EncoderState()
{
    ResetLastError();
    sceEncoderState state = sceClosed;
    if (m_hReader != ReaderHandle::None) {
        const Failure failure = SelectCardInRange();
        if (!failure || failure.Letter == StatusAuthenticationFailed) {
            state = sceReady;
        } else {
            state = failure.Number == NoCardInEncoder.Number ? sceOpened : sceUnknown;
        }
    }
    ResetLastError(L"EncoderState");
    return state;
}

std::wstring Encoder::ReaderType()
{
    std::wstring type;
    if (const Failure failure = ReadReaderType(type)) {
        throw RaisedFailure{failure.Number, std::wstring(failure.Description), std::nullopt};
    }
    return type;
}

Failure Encoder::ReadReaderType(std::wstring& type)
{
    if (m_hReader == ReaderHandle::None) {
        SetLastError(EncoderIsClosed, L"ReaderType");
        return EncoderIsClosed;
    }
    if (const Failure failure = m_oReaderDLL.GetReaderType(m_hReader, type)) {
        SetLastError(failure, L"ReaderType", L"GetReaderType");
        return failure;
    }
    ResetLastError(L"ReaderType");
    return {};
}

std::wstring Encoder::ATRString()
{
    RaiseNotSupported(L"ATRString");
}

sceCardTypes Encoder::CardType()
{
    RaiseNotSupported(L"CardType");
}

int32_t Encoder::SerialNumberLength()
{
    RaiseNotSupported(L"SerialNumberLength");
}

void Encoder::RaiseNotSupported(std::wstring_view property)
{
    SetLastError(FeatureNotSupported, property);
    throw RaisedFailure{FeatureNotSupported.Number, std::wstring(FeatureNotSupported.Description),
                        std::wstring()};
}

void Encoder::SetLastError(const Failure& failure, std::wstring_view ComFunction,
                           std::wstring_view RdrCommand)
{
    CError& record = *m_oLastError; // assigned field by field, so that each text keeps its memory
    record.Number = failure.Number;
    record.Description = failure.Description;
    record.LastDllError = failure.LastDllError;
    record.ComFunction = ComFunction;
    record.RdrCommand = RdrCommand;
    record.RdrRetCode.assign(failure.Letter != L'\0' ? 1 : 0, failure.Letter);
}

void Encoder::ResetLastError(std::wstring_view ComFunction)
{
    CError& record = *m_oLastError; // as SetLastError does, but at each operation several times
    record.Number = 0;
    record.Description.clear();
    record.LastDllError = 0;
    record.ComFunction = ComFunction;
    record.RdrCommand.clear();
    record.RdrRetCode.clear();
}

void Encoder::TraceLastError(std::wstring_view FunctionName)
{
    CError& record = *m_oLastError;
    if (!record.ComFunction.empty()) {
        std::wstring path = record.ComFunction;
        if (!record.RdrCommand.empty()) {
            path += L":";
            path += record.RdrCommand;
        }
        record.RdrCommand = std::move(path);
    }
    record.ComFunction = FunctionName;
}

sceReturnCode Encoder::Fail(const Failure& failure, std::wstring_view OperationName,
                            std::wstring_view RdrCommand)
{
    SetLastError(failure, OperationName, RdrCommand);
    return sceError;
}

sceReturnCode Encoder::FailBelow(std::wstring_view OperationName)
{
    TraceLastError(OperationName);
    return sceError;
}

} // namespace acg
