// The information text, and bringing the reader up and down.
#include "encoder/Encoder.h"
#include "encoder/NumberReading.h"

namespace acg
{

namespace
{

constexpr int32_t HandleNumbers = 100000;
constexpr uint8_t AsciiProtocol = 0;
constexpr std::chrono::seconds WaitForCard{5};

} // namespace

std::wstring Encoder::GetInformation()
{
    ResetLastError();
    DrawHandleNumber();
    std::wstring information = L"Tarvello|ACG Multi-ISO|" ACG_VERSION L"|1|";
    information += DecimalText(m_lHandleNumber);
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
    try {
        if (OpenFirstReader() == sceError) {
            ReleaseDevice();
            return sceError;
        }
        const auto deadline = m_oClock() + WaitForCard;
        do {
            // The record decides, not the result: without a reader's type, too, the wait goes on.
            static_cast<void>(SelectCardInRange());
        } while (m_oLastError->Number != 0 && m_oClock() < deadline);
        ResetLastError(L"OpenEncoder");
    } catch (...) { // out of memory: a host that gets no result has nothing to close
        ReleaseDevice();
        throw;
    }
    return sceSuccess;
}

sceReturnCode Encoder::OpenFirstReader()
{
    const auto failedCall = [this](const Failure& failure, std::wstring_view function) {
        RecordCallFailure(failure, L"OpenEncoder", function);
        return sceError;
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
    if (readers.empty()) {
        RecordRefusal(NoEncoderFound, L"OpenEncoder", L"DetectReader", L"0");
        return sceError;
    }
    if (const Failure failure =
            m_oReaderDLL.OpenReader(m_hComm, static_cast<uint8_t>(readers.front()), m_hReader)) {
        return failedCall(failure, L"OpenReader");
    }
    if (m_hReader == 0) {
        RecordRefusal(CannotOpenEncoder, L"OpenEncoder", L"OpenReader", L"0");
        return sceError;
    }
    return sceSuccess;
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
    // The record tells how it went.
    static_cast<void>(CloseEncoder());
    static_cast<void>(OpenEncoder(m_lHandleNumber));
}

void Encoder::ReleaseDevice()
{
    static_cast<void>(m_oReaderDLL.CloseReader(m_hReader));
    m_hReader = 0;
    static_cast<void>(m_oReaderDLL.CloseComm(m_hComm));
    m_hComm = 0;
    m_colValueBlocks.reset();
}

} // namespace acg
