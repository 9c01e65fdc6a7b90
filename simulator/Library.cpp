#include "simulator/Library.h"

#include "acg/platform/HexText.h"
#include "acg/platform/Process.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <utility>

namespace simulator
{

template <class Opened, class Result, class Body>
Result Library::With(std::map<Handle, Opened>& all, Handle handle, Result otherwise, const Body& body)
{
    const std::lock_guard lock(m_mutex);
    const auto found = all.find(handle);
    return found == all.end() ? otherwise : body(found->second);
}

template <class Value>
Value Library::Get(Handle comm, Value Line::*setting)
{
    return With(m_lines, comm, Value(), [&](const Line& line) { return line.*setting; });
}

template <class Value>
int32_t Library::Set(Handle comm, Value Line::*setting, Value value)
{
    return With(m_lines, comm, 0, [&](Line& line) {
        line.*setting = value;
        return 0;
    });
}

acgreader::ReaderLibrary& Library::Answering()
{
    const std::lock_guard lock(m_mutex);
    return m_replay ? static_cast<ReaderLibrary&>(*m_replay) : *this;
}

Library::Handle Library::OpenComm(Text DeviceText, uint8_t Autodetect, acgreader::CommSettings& Settings)
{
    try {
        const Device device = ParseDeviceText(DeviceText);
        if (device.ReplayPath.empty()) {
            return Open(device, Settings);
        }
        const std::lock_guard lock(m_mutex);
        if (!m_replay) {
            m_replay = std::make_unique<Replay>(device.ReplayPath);
        }
        return m_replay->OpenComm(DeviceText, Autodetect, Settings);
    } catch (const std::exception& reason) {
        acgreader::Report(std::string("OpenComm: ") + reason.what());
        return 0;
    }
}

Library::Handle Library::Open(const Device& Named, const acgreader::CommSettings& Settings)
{
    const std::lock_guard lock(m_mutex);
    m_lines.insert(
        {++m_lastHandle, {Named, m_cards.Place(Named.Card), Settings.BaudRate, Settings.Protocol}});
    return m_lastHandle;
}

int32_t Library::SetCommTimeout(Handle Comm, int32_t Timeout)
{
    return Set(Comm, &Line::Timeout, Timeout);
}

int32_t Library::SetCommProtocol(Handle Comm, uint8_t Protocol)
{
    return Set(Comm, &Line::Protocol, Protocol);
}

uint8_t Library::GetCommProtocol(Handle Comm)
{
    return Get(Comm, &Line::Protocol);
}

int32_t Library::GetCommBaudRate(Handle Comm)
{
    return Get(Comm, &Line::BaudRate);
}

int32_t Library::GetCommTimeout(Handle Comm)
{
    return Get(Comm, &Line::Timeout);
}

std::string Library::DetectReader(Handle Comm, Buffer /*buffer*/)
{
    return With(m_lines, Comm, std::string(), [](const Line& line) {
        return std::string(line.Named.ReaderIds.begin(), line.Named.ReaderIds.end());
    });
}

Library::Handle Library::OpenReader(Handle Comm, uint8_t Id, int32_t /*Third*/)
{
    return With(m_lines, Comm, Handle{0}, [&](const Line& line) -> Handle {
        if (std::ranges::count(line.Named.ReaderIds, Id) == 0) {
            return 0;
        }
        m_readers.insert({++m_lastHandle, {Comm, Id, {line.Named, m_cards, line.InField}}});
        return m_lastHandle;
    });
}

std::string Library::GetReaderType(Handle Reader, Buffer /*buffer*/)
{
    return With(m_readers, Reader, std::string(),
                [](const OpenedReader& reader) { return reader.Opened.Type(); });
}

std::string Library::GetDeviceID(Handle Reader, Buffer /*buffer*/)
{
    return With(m_readers, Reader, std::string(), [](const OpenedReader& reader) {
        return "Simulated reader " + acg::ToHex({&reader.Id, 1});
    });
}

std::string Library::SendCommandGetData(Handle Reader, Text Command, Text Data, Buffer /*buffer*/)
{
    std::chrono::microseconds taken{0};
    std::string sent = With(m_readers, Reader, StatusReply(StatusUnknownCommand), [&](OpenedReader& reader) {
        std::string reply = reader.Opened.Send(Command, Data);
        taken = reader.Opened.TimeOf(Command, Data, reply);
        return reply;
    });
    acg::Wait(taken); // with the other threads let in
    return sent;
}

int32_t Library::CloseReader(Handle Reader)
{
    const std::lock_guard lock(m_mutex);
    m_readers.erase(Reader);
    return 0;
}

int32_t Library::CloseComm(Handle Comm)
{
    const std::lock_guard lock(m_mutex);
    m_lines.erase(Comm);
    std::erase_if(m_readers, [&](const auto& entry) { return entry.second.Comm == Comm; });
    return 0;
}

} // namespace simulator
