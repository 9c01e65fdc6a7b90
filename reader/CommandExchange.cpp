// The exchange of one reader command, and the selection of the card.
#include "encoder/Encoder.h"
#include "platform/TextCase.h"
#include "reader/StatusLetters.h"

#include <utility>

namespace acg
{

/// Sends a command with its data text, and gives the reply. A status letter in place of data is raised as -5
/// with the letter in the record and in Reply. The record holds the command, never its data.
Failure Encoder::EncoderCommand(std::wstring_view Command, const SecretText& Data, SecretText& Reply)
{
    constexpr size_t StatusLetterLength = 1;

    Reply.Clear();
    if (m_hReader == 0) {
        RecordRefusal(EncoderIsClosed, L"EncoderCommand");
        return Raised(EncoderIsClosed);
    }
    if (const Failure failure = m_oReaderDLL.SendCommandGetData(m_hReader, Command, Data, Reply)) {
        RecordCallFailure(failure, L"EncoderCommand", L"SendCommandGetData:");
        m_oLastError->RdrCommand += Command;
        return failure;
    }
    const size_t firstNul = Reply.Characters().find(L'\0');
    if (firstNul == std::wstring_view::npos) {
        return {};
    }
    Reply.InPlace().resize(firstNul);
    if (firstNul == StatusLetterLength) {
        RecordRefusal(EncoderCommandFailed, L"EncoderCommand", L"SendCommandGetData:", Reply);
        m_oLastError->RdrCommand += Command;
        return Raised(EncoderCommandFailed);
    }
    return {};
}

/// Sets the reader to ISO 14443 A, switches the antenna on, and selects the card in the field. After a
/// success the record is what asking for the reader's type left: clean, or its call failure; then
/// m_sReaderType keeps its value.
sceReturnCode Encoder::SelectCardInRange()
{
    const SecretText noData;
    SecretText reply;
    // What comes of these two doesn't matter: "select" tells.
    static_cast<void>(EncoderCommand(L"use iso14443a", noData, reply));
    static_cast<void>(EncoderCommand(L"antenna on", noData, reply));
    if (const Failure failure = EncoderCommand(L"select", noData, reply)) {
        RecordNoCard(failure);
        TraceLastError(L"SelectCardInRange");
        return sceError;
    }
    std::wstring type;
    const Failure failure = ReadReaderType(type);
    if (!failure) {
        m_sReaderType = ToLower(std::move(type));
    }
    return sceSuccess;
}

/// A "select" that the reader answered with "no card" has a number of its own, and no path.
void Encoder::RecordNoCard(const Failure& Failed)
{
    if (Failed.Number == EncoderCommandFailed.Number && IsStatus(m_oLastError->RdrRetCode, StatusNoCard)) {
        RecordRefusal(NoCardInEncoder, /*ComFunction=*/L"");
    }
}

} // namespace acg
