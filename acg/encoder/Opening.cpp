// The information text, and opening and closing the reader.
#include "abi/ACGReader330.h"
#include "acg/encoder/Encoder.h"
#include "acg/encoder/Failures.h"
#include "acg/encoder/NumberReading.h"

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
    information += DecimalText(m_lHandleNumber) + L'|';
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
    m_colValueBlocks.clear();
    if (Handle != m_lHandleNumber) {
        return Fail(CannotOpenLink, L"OpenEncoder", L"OpenComm");
    }

    CommSettings settings{.BaudRate = m_lBaudRate, .Protocol = AsciiProtocol};
    Failure ofLink = m_oReaderDLL.OpenComm(m_sDevice, m_bAutodetect, settings, m_hComm);
    if (!ofLink && m_hComm == CommHandle::None) {
        ofLink = CannotOpenLink;
    }
    if (ofLink) {
        return Fail(ofLink, L"OpenEncoder", L"OpenComm");
    }
    try {
        if (const Failure failure = OpenFirstReader()) {
            ReleaseDevice();
            return sceError;
        }
        const auto deadline = m_oClock() + WaitForCard;
        Failure selection;
        Failure ofReaderType; // a pass in which the reader's type can't be queried is repeated, too
        do {
            selection = SelectCardInRange(&ofReaderType);
        } while ((selection || ofReaderType) && m_oClock() < deadline);
        ResetLastError(L"OpenEncoder");
    } catch (...) { // out of memory: a host that receives no result has nothing to close
        ReleaseDevice();
        throw;
    }
    return sceSuccess;
}

Failure Encoder::OpenFirstReader()
{
    const auto fail = [this](const Failure& failure, std::wstring_view function) {
        SetLastError(failure, L"OpenEncoder", function);
        return failure;
    };
    if (const Failure failure = m_oReaderDLL.SetCommTimeout(m_hComm, m_lTimeout)) {
        return fail(failure, L"SetCommTimeout");
    }
    if (const Failure failure = m_oReaderDLL.SetCommProtocol(m_hComm, AsciiProtocol)) {
        return fail(failure, L"SetCommProtocol");
    }
    std::string readers;
    if (const Failure failure = m_oReaderDLL.DetectReader(m_hComm, readers)) {
        return fail(failure, L"DetectReader");
    }
    if (readers.empty()) {
        return fail(NoEncoderFound, L"DetectReader");
    }
    const auto first = static_cast<uint8_t>(readers.front());
    if (const Failure failure = m_oReaderDLL.OpenReader(m_hComm, first, m_hReader)) {
        return fail(failure, L"OpenReader");
    }
    return m_hReader == ReaderHandle::None ? fail(CannotOpenReader, L"OpenReader") : Failure();
}

sceReturnCode Encoder::CloseEncoder()
{
    const auto fail = [this](const Failure& failure, std::wstring_view function) {
        ReleaseDevice();
        return Fail(failure, L"CloseEncoder", function);
    };
    ResetLastError();
    if (const Failure failure =
            m_hReader != ReaderHandle::None ? m_oReaderDLL.CloseReader(m_hReader) : Failure()) {
        return fail(failure, L"CloseReader");
    }
    m_hReader = ReaderHandle::None;
    if (const Failure failure = m_hComm != CommHandle::None ? m_oReaderDLL.CloseComm(m_hComm) : Failure()) {
        return fail(failure, L"CloseComm");
    }
    m_hComm = CommHandle::None;
    m_colValueBlocks.clear();
    ResetLastError(L"CloseEncoder");
    return sceSuccess;
}

void Encoder::ReOpenEncoder()
{
    // The outcome is in the record.
    static_cast<void>(CloseEncoder());
    static_cast<void>(OpenEncoder(m_lHandleNumber));
}

void Encoder::ReleaseDevice() noexcept
{
    const auto ignore = [](const auto& call) {
        try {
            static_cast<void>(call());
        } catch (...) { // out of memory: the rest is released all the same
        }
    };
    ignore([this] { return m_oReaderDLL.CloseReader(m_hReader); });
    m_hReader = ReaderHandle::None;
    ignore([this] { return m_oReaderDLL.CloseComm(m_hComm); });
    m_hComm = CommHandle::None;
    m_colValueBlocks.clear();
}

} // namespace acg
