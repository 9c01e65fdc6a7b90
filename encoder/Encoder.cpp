// Creation, destruction, the record of the last failure, and the read-only properties.
#include "encoder/Encoder.h"

#include "reader/StatusLetters.h"

#include <utility>

namespace acg
{

Encoder::Encoder() : Encoder(ReaderDLL(), std::chrono::steady_clock::now) {}

Encoder::Encoder(ReaderDLL Reader, Clock Now)
    : m_oReaderDLL(std::move(Reader)), m_oClock(std::move(Now)),
      m_oRandom(static_cast<std::mt19937::result_type>(m_oClock().time_since_epoch().count()))
{
    DrawHandleNumber();
    ResetLastError();
}

Encoder::~Encoder()
{
    try {
        ReleaseDevice();
    } catch (...) { // out of memory for a failure that nobody reads
    }
}

std::shared_ptr<CError> Encoder::LastError()
{
    return m_oLastError;
}

sceEncoderState Encoder::EncoderState()
{
    ResetLastError();
    sceEncoderState state = sceClosed;
    if (m_hReader != 0) {
        const bool selected = SelectCardInRange() != sceError;
        if (!selected && m_oLastError->Number == NoCardInEncoder.Number) {
            state = sceOpened;
        } else if (selected || IsStatus(m_oLastError->RdrRetCode, StatusAuthenticationFailed)) {
            state = sceReady;
        } else {
            state = sceUnknown;
        }
    }
    ResetLastError(L"EncoderState");
    return state;
}

std::wstring Encoder::ReaderType()
{
    std::wstring type;
    if (const Failure failure = ReadReaderType(type)) {
        throw RaisedFailure{failure.Number, failure.Description, std::nullopt};
    }
    return type;
}

Failure Encoder::ReadReaderType(std::wstring& Type)
{
    ResetLastError();
    if (m_hReader == 0) {
        RecordRefusal(EncoderIsClosed, L"ReaderType");
        return Raised(EncoderIsClosed);
    }
    if (const Failure failure = m_oReaderDLL.GetReaderType(m_hReader, Type)) {
        RecordCallFailure(failure, L"ReaderType", L"GetReaderType");
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

void Encoder::RaiseNotSupported(std::wstring_view Property)
{
    ResetLastError();
    RecordRefusal(FeatureNotSupported, Property);
    throw RaisedFailure{FeatureNotSupported.Number, FeatureNotSupported.Description, std::wstring()};
}

void Encoder::SetLastError(std::optional<int32_t> Number, std::optional<std::wstring_view> Description,
                           std::optional<int32_t> LastDllError, std::optional<std::wstring_view> ComFunction,
                           std::optional<std::wstring_view> RdrCommand,
                           std::optional<std::wstring_view> RdrRetCode)
{
    CError& record = *m_oLastError;
    record.Number = Number.value_or(record.Number);
    const auto store = [](std::wstring& field, const std::optional<std::wstring_view>& text) {
        if (text) {
            field = *text;
        }
    };
    store(record.Description, Description);
    record.LastDllError = LastDllError.value_or(record.LastDllError);
    store(record.ComFunction, ComFunction);
    store(record.RdrCommand, RdrCommand);
    store(record.RdrRetCode, RdrRetCode);
}

void Encoder::ResetLastError(std::wstring_view ComFunction)
{
    CError& record = *m_oLastError; // each field for itself: its text keeps its memory for the next one
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

void Encoder::RecordRefusal(const KnownFailure& Refusal, std::wstring_view ComFunction,
                            std::wstring_view RdrCommand, std::wstring_view RdrRetCode)
{
    SetLastError(Refusal.Number, Refusal.Description, /*LastDllError=*/0, ComFunction, RdrCommand,
                 RdrRetCode);
}

void Encoder::RecordCallFailure(const Failure& Failed, std::wstring_view ComFunction,
                                std::wstring_view RdrCommand)
{
    SetLastError(Failed.Number, Failed.Description, Failed.LastDllError, ComFunction, RdrCommand, L"");
}

} // namespace acg
