// The information text, and bringing the reader up and down.
#include "encoder/Encoder.h"

namespace acg
{

namespace
{

constexpr int32_t HandleNumbers = 100000;
constexpr uint8_t AsciiProtocol = 0;
constexpr std::chrono::seconds WaitForCard{5};

/// The id of the first reader in the list; 0 if there is none.
uint8_t FirstReader(const std::string& readers)
{
    return readers.empty() ? uint8_t{0} : static_cast<uint8_t>(readers.front());
}

} // namespace

std::wstring Encoder::GetInformation()
{
    ResetLastError();
    DrawHandleNumber();
    std::wstring information = L"Tarvello|ACG Multi-ISO|" ACG_VERSION L"|1|";
    information += std::to_wstring(m_lHandleNumber);
    information += L'|';
    information += Capabilities;
    ResetLastError(L"GetInformation");
    return information;
}

void Encoder::DrawHandleNumber()
{
    m_lHandleNumber = std::uniform_int_distribution<int32_t>(0, HandleNumbers - 1)(m_oRandom);
}

sceReturnCode Encoder::OpenEncoder(int32_t Handle)
{
    ResetLastError();
    m_colValueBlocks.emplace();
    if (Handle != m_lHandleNumber) {
        RecordRefusal(CannotOpenEncoder, L"OpenEncoder", L"OpenComm");
        return sceError;
    }

    CommSettings settings{.BaudRate = m_lBaudRate, .Protocol = AsciiProtocol};
    if (const Failure failure = m_oReaderDLL.OpenComm(m_sDevice, m_bAutodetect, settings, m_hComm)) {
        RecordCallFailure(failure, L"OpenEncoder", L"OpenComm");
        return sceError;
    }
    if (m_hComm == 0) {
        RecordRefusal(CannotOpenEncoder, L"OpenEncoder", L"OpenComm");
        return sceError;
    }
    if (!OpenFirstReader()) {
        ReleaseDevice();
        return sceError;
    }

    const auto deadline = m_oClock() + WaitForCard;
    do {
        SelectCardInRange();
    } while (m_oLastError->Number != 0 && m_oClock() < deadline);
    ResetLastError(L"OpenEncoder");
    return sceSuccess;
}

bool Encoder::OpenFirstReader()
{
    const auto failedCall = [this](const Failure& failure, std::wstring_view function) {
        RecordCallFailure(failure, L"OpenEncoder", function);
        return false;
    };
    if (const Failure failure = m_oReaderDLL.SetCommTimeout(m_hComm, m_lTimeout)) {
        return failedCall(failure, L"SetCommTimeout");
    }
    if (const Failure failure = m_oReaderDLL.SetCommProtocol(m_hComm, AsciiProtocol)) {
        return failedCall(failure, L"SetCommProtocol");
    }
    std::string readers;
    if (const Failure failure = m_oReaderDLL.DetectReader(m_hComm, readers)) {
        return failedCall(failure, L"DetectReader");
    }
    const uint8_t readerId = FirstReader(readers);
    if (readerId == 0) {
        RecordRefusal(NoEncoderFound, L"OpenEncoder", L"DetectReader", L"0");
        return false;
    }
    if (const Failure failure = m_oReaderDLL.OpenReader(m_hComm, readerId, m_hReader)) {
        return failedCall(failure, L"OpenReader");
    }
    if (m_hReader == 0) {
        RecordRefusal(CannotOpenEncoder, L"OpenEncoder", L"OpenReader", L"0");
        return false;
    }
    return true;
}

sceReturnCode Encoder::CloseEncoder()
{
    ResetLastError();
    const auto failedCall = [this](const Failure& failure, std::wstring_view function) {
        RecordCallFailure(failure, L"CloseEncoder", function);
        ReleaseDevice();
        return sceError;
    };
    if (m_hReader != 0) {
        if (const Failure failure = m_oReaderDLL.CloseReader(m_hReader)) {
            return failedCall(failure, L"CloseReader");
        }
    }
    m_hReader = 0;
    if (m_hComm != 0) {
        if (const Failure failure = m_oReaderDLL.CloseComm(m_hComm)) {
            return failedCall(failure, L"CloseComm");
        }
    }
    m_hComm = 0;
    m_colValueBlocks.reset();
    ResetLastError(L"CloseEncoder");
    return sceSuccess;
}

void Encoder::ReOpenEncoder()
{
    CloseEncoder();
    static_cast<void>(OpenEncoder(m_lHandleNumber)); // the record tells how it went
}

/// Closes whatever is open, and says nothing of what fails. The library takes a handle of 0 as well.
void Encoder::ReleaseDevice()
{
    static_cast<void>(m_oReaderDLL.CloseReader(m_hReader));
    m_hReader = 0;
    static_cast<void>(m_oReaderDLL.CloseComm(m_hComm));
    m_hComm = 0;
    m_colValueBlocks.reset();
}

} // namespace acg
