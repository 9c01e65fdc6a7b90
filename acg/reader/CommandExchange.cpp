// The exchange of one reader command, and the selection of the card.
#include "acg/reader/CommandExchange.h"

#include "acg/encoder/Encoder.h"
#include "acg/encoder/Failures.h"
#include "acg/platform/Secret.h"
#include "acg/platform/TextCase.h"

#include <cstring>

namespace acg
{

namespace
{

/// The character of a reply that is one character and a NUL; else NUL.
wchar_t StatusLetter(std::string_view reply)
{
    const size_t firstNul = reply.find('\0');
    if (firstNul == std::string_view::npos) {
        return L'\0';
    }
    if (IsAscii(reply.substr(0, firstNul))) {
        return firstNul == 1 ? static_cast<wchar_t>(reply.front()) : L'\0';
    }
    // One character may be several bytes.
    const Secret<wchar_t> wide{FromAnsi(reply)};
    return wide.Text.find(L'\0') == 1 ? wide.Text.front() : L'\0';
}

} // namespace

Failure Exchange(ReaderDLL& library, ReaderHandle reader, const char* command, const CommandData& data,
                 ByteString& reply)
{
    if (const Failure failure = library.SendCommandGetData(reader, command, data.Text(), reply)) {
        return failure;
    }
    const wchar_t letter = StatusLetter(reply.Bytes());
    if (letter == L'\0') {
        return {};
    }
    return {EncoderCommandFailed.Number, EncoderCommandFailed.Description, /*LastDllError=*/0, letter};
}

Failure JudgeLogin(const Failure& exchange, std::wstring_view readerType)
{
    if (readerType == ReaderWithSilentLogin || exchange.Letter == StatusLoggedIn) {
        return {};
    }
    if (!exchange) {
        return EncoderFailure;
    }
    return {AuthenticationFailure.Number, AuthenticationFailure.Description, exchange.LastDllError,
            exchange.Letter};
}

/// As acg::Exchange; a closed encoder is failure -1.
Failure Encoder::Exchange(const char* command, const CommandData& data, ByteString& reply)
{
    return m_hReader == ReaderHandle::None ? EncoderIsClosed
                                           : acg::Exchange(m_oReaderDLL, m_hReader, command, data, reply);
}

/// The record holds the command, never its data.
void Encoder::RecordExchange(const Failure& failure, const char* command)
{
    SetLastError(failure, L"EncoderCommand");
    if (failure.Number != EncoderIsClosed.Number) {
        m_oLastError->RdrCommand = L"SendCommandGetData:";
        m_oLastError->RdrCommand.append(command, command + std::strlen(command));
    }
}

/// An exchange whose every failure is recorded.
Failure Encoder::EncoderCommand(const char* command, const CommandData& data, ByteString& reply)
{
    const Failure failure = Exchange(command, data, reply);
    if (failure) {
        RecordExchange(failure, command);
    }
    return failure;
}

/// Sends "select". An empty field is a failure with a number of its own, and no path.
Failure Encoder::SelectCard(ByteString& serialText)
{
    const Failure failure = Exchange("select", CommandData(), serialText);
    if (failure.Letter == StatusNoCard) {
        SetLastError(NoCardInEncoder, /*ComFunction=*/{});
        return NoCardInEncoder;
    }
    if (failure) {
        RecordExchange(failure, "select");
    }
    return failure;
}

/// Sets the reader to ISO 14443 A, switches the antenna on, and selects the card in the field. After a
/// success the record is that of querying the reader's type: clean, or its call failure, which is also
/// returned in readerTypeFailure; then m_sReaderType keeps its value.
Failure Encoder::SelectCardInRange(Failure* readerTypeFailure)
{
    const CommandData noData;
    ByteString reply;
    // The results of these two don't matter: "select" decides.
    static_cast<void>(Exchange("use iso14443a", noData, reply));
    static_cast<void>(Exchange("antenna on", noData, reply));
    if (const Failure failure = SelectCard(reply)) {
        TraceLastError(L"SelectCardInRange");
        return failure;
    }
    const Failure failure = ReadReaderType(m_sReaderType);
    MakeLower(m_sReaderType);
    if (readerTypeFailure != nullptr) {
        *readerTypeFailure = failure;
    }
    return {};
}

} // namespace acg
