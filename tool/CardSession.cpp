#include "tool/CardSession.h"

#include "acg/cards/BlockAddress.h"
#include "acg/platform/TextCase.h"
#include "acg/reader/CommandExchange.h"
#include "tool/System.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

constexpr const char* NoSerialNumber = "the reader's reply to selecting the card has no serial number";

/// As the class records a failed exchange, but without the operation.
CError RecordOf(const Failure& failure, const char* command)
{
    return {.Number = failure.Number,
            .Description = std::wstring(failure.Description),
            .LastDllError = failure.LastDllError,
            .ComFunction = L"EncoderCommand",
            .RdrCommand = L"SendCommandGetData:" + ToWide(command),
            .RdrRetCode = std::wstring(failure.Letter != L'\0' ? 1 : 0, failure.Letter)};
}

void ThrowIfInterrupted()
{
    if (WasInterrupted()) {
        throw Interruption{};
    }
}

/// None: the failure concerns more than one block.
Refusal RefusalIn(const CError& record)
{
    const bool isLogin = record.RdrCommand.ends_with(L"login");
    const wchar_t letter = record.RdrRetCode.empty() ? L'\0' : record.RdrRetCode.front();
    if ((!isLogin && !record.RdrCommand.ends_with(L"read block")) || letter == L'\0' || letter == L'N') {
        return Refusal::None;
    }
    // A reader that doesn't judge the login answers O or R to the block command.
    return isLogin || letter == L'O' || letter == L'R' ? Refusal::WrongKey : Refusal::NotGranted;
}

std::unique_ptr<Encoder> OpenedEncoder(const ReaderOptions& reader, CardWait wait)
{
    auto encoder = MakeEncoder(reader.Parameters, wait, ReaderDLL(LookUpOf(reader)));
    Open(*encoder);
    return encoder;
}

} // namespace

CardSession::CardSession(const ReaderOptions& reader, CardWait wait)
    : CardSession(OpenedEncoder(reader, wait), ReaderDLL(LookUpOf(reader)))
{
}

CardSession::CardSession(std::shared_ptr<Encoder> opened, ReaderDLL library)
    : m_encoder(std::move(opened)), m_library(std::move(library))
{
    try {
        m_readerType = m_encoder->ReaderType();
    } catch (const RaisedFailure&) {
        throw CardFailure{*m_encoder->LastError()};
    }
    MakeLower(m_readerType);
}

Encoder& CardSession::Class()
{
    m_isSelected = false;
    m_login.reset();
    return *m_encoder;
}

const std::string& CardSession::SerialNumber()
{
    if (!m_serial) {
        Select();
    }
    if (m_serial->empty()) {
        throw OtherFailure{NoSerialNumber};
    }
    return *m_serial;
}

void CardSession::Select()
{
    std::wstring serial;
    ThrowIfFailed(*m_encoder, Class().ReadSerialNumber(serial));
    const std::string now = ToUtf8(serial);
    if (now.empty() && m_serial && !m_serial->empty()) {
        throw OtherFailure{NoSerialNumber};
    }
    m_serial = m_serial.value_or(now);
    if (now != *m_serial) {
        throw AnotherCard{{Format("another card is in the field: %s; the first one was %s", now.c_str(),
                                  m_serial->c_str())},
                          now};
    }
    m_isSelected = true;
}

Refusal CardSession::TryLogIn(int32_t sector, const LoginKey& key)
{
    if (m_readerType == ReaderWithSilentLogin) {
        Block trailer;
        const Refusal refusal = TryReadBlock(TrailerBlock(sector), key, trailer);
        return refusal == Refusal::WrongKey ? refusal : Refusal::None;
    }
    try {
        LogIn(sector, key);
        return Refusal::None;
    } catch (const CardFailure& failure) {
        m_refused = failure.Record;
        if (RefusalIn(failure.Record) == Refusal::None) {
            throw;
        }
        return Refusal::WrongKey;
    }
}

void CardSession::LogIn(int32_t sector, const LoginKey& key)
{
    ThrowIfInterrupted();
    if (m_login && m_login->Sector == sector && m_login->Key == key) {
        return;
    }
    if (!m_isSelected) {
        Select();
    }
    const Secret<wchar_t> digits = DigitsOf(key.Bytes);
    CommandData data;
    data.AddByte(LoginSector(TrailerBlock(sector))).AddByte(key.IsB() ? 0xBB : 0xAA).AddText(digits.Text);
    ByteString reply;
    const Failure failure =
        JudgeLogin(Exchange(m_library, Class().OpenedReader(), "login", data, reply), m_readerType);
    if (failure) {
        throw CardFailure{RecordOf(failure, "login")};
    }
    m_login = {sector, key};
}

std::optional<CError> CardSession::Send(const char* command, const CommandData& data, ByteString& reply)
{
    const Failure failure = Exchange(m_library, m_encoder->OpenedReader(), command, data, reply);
    if (!failure) {
        return std::nullopt;
    }
    m_login.reset();
    return RecordOf(failure, command);
}

Block CardSession::ReadBlock(int32_t number, const LoginKey& key)
{
    LogIn(SectorOf(number), key);
    CommandData data;
    data.AddByte(number);
    ByteString reply;
    const std::optional<CError> failure = Send("read block", data, reply);
    ThrowIfInterrupted();
    if (failure) {
        throw CardFailure{*failure};
    }
    const std::string_view digits = reply.Bytes().substr(0, reply.Bytes().find('\0'));
    if (digits.size() != 2 * std::size(Block())) {
        throw OtherFailure{Format("the reader's reply to reading block %d isn't a whole block", number)};
    }
    const std::optional<Block> block = ParseBlock(digits);
    if (!block) {
        throw OtherFailure{Format("the reader's reply to reading block %d isn't hexadecimal", number)};
    }
    return *block;
}

Refusal CardSession::TryReadBlock(int32_t number, const LoginKey& key, Block& contents)
{
    try {
        contents = ReadBlock(number, key);
        return Refusal::None;
    } catch (const CardFailure& failure) {
        m_refused = failure.Record;
        const Refusal refusal = RefusalIn(failure.Record);
        if (refusal == Refusal::None) {
            throw;
        }
        return refusal;
    }
}

std::optional<CError> CardSession::WriteBlock(int32_t number, const LoginKey& key, const Block& contents)
{
    LogIn(SectorOf(number), key);
    CommandData data;
    data.AddByte(number);
    for (const uint8_t byte : contents) {
        data.AddByte(byte);
    }
    ByteString reply;
    return Send("write block", data, reply);
}

} // namespace acg::tool
