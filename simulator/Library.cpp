#include "simulator/Library.h"

#include "acg/platform/AnsiText.h"
#include "acg/platform/HexText.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace simulator
{

acgreader::ReaderLibrary& Library::Answering()
{
    const std::lock_guard lock(m_mutex);
    return m_replay ? static_cast<ReaderLibrary&>(*m_replay) : *this;
}

Library::Handle Library::OpenComm(Text deviceText, uint8_t autodetect, acgreader::CommSettings& settings)
{
    try {
        const Device device = ParseDeviceText(deviceText);
        if (device.ReplayPath.empty()) {
            return Open(device, settings);
        }
        const std::lock_guard lock(m_mutex);
        if (!m_replay) {
            m_replay = std::make_unique<Replay>(device.ReplayPath);
        }
        return m_replay->OpenComm(deviceText, autodetect, settings);
    } catch (const std::exception& reason) {
        acgreader::Report(std::string("OpenComm: ") + reason.what());
        return 0;
    }
}

Library::Handle Library::Open(const Device& device, const acgreader::CommSettings& settings)
{
    std::error_code unreadable;
    if (!device.Folder.empty() &&
        !std::filesystem::is_directory(acg::PathFromAnsi(device.Folder), unreadable)) {
        throw Refusal("cards=" + device.Folder, "expected a folder that exists");
    }
    const std::lock_guard lock(m_mutex);
    Card* const inField = m_cards.Place(InFolder(device.Card, device.Folder));
    m_lines.insert({++m_lastHandle, {device, inField, settings.BaudRate, settings.Protocol}});
    return m_lastHandle;
}

std::string Library::DetectReader(Handle comm, Buffer /*buffer*/)
{
    return With(m_lines, comm, std::string(), [](const Line& line) {
        return std::string(line.Options.ReaderIds.begin(), line.Options.ReaderIds.end());
    });
}

Library::Handle Library::OpenReader(Handle comm, uint8_t id, int32_t /*zero*/)
{
    return With(m_lines, comm, Handle{0}, [&](const Line& line) -> Handle {
        if (std::ranges::count(line.Options.ReaderIds, id) == 0) {
            return 0;
        }
        m_readers.insert({++m_lastHandle, {comm, id, {line.Options, m_cards, line.InField}}});
        return m_lastHandle;
    });
}

std::string Library::GetReaderType(Handle reader, Buffer /*buffer*/)
{
    return With(m_readers, reader, std::string(),
                [](const OpenedReader& opened) { return opened.Device.Type(); });
}

std::string Library::GetDeviceID(Handle reader, Buffer /*buffer*/)
{
    return With(m_readers, reader, std::string(), [](const OpenedReader& opened) {
        return "Simulated reader " + acg::ToHex({&opened.Id, 1});
    });
}

std::string Library::SendCommandGetData(Handle reader, Text command, Text data, Buffer /*buffer*/)
{
    std::chrono::microseconds taken{0};
    std::string sent = With(m_readers, reader, StatusReply(StatusUnknownCommand), [&](OpenedReader& opened) {
        std::string reply = opened.Device.Send(command, data);
        taken = opened.Device.TimeOf(command, data, reply);
        return reply;
    });
    std::this_thread::sleep_for(taken); // with the other threads let in
    return sent;
}

int32_t Library::CloseReader(Handle reader)
{
    const std::lock_guard lock(m_mutex);
    m_readers.erase(reader);
    return 0;
}

int32_t Library::CloseComm(Handle comm)
{
    const std::lock_guard lock(m_mutex);
    m_lines.erase(comm);
    std::erase_if(m_readers, [&](const auto& entry) { return entry.second.Comm == comm; });
    return 0;
}

} // namespace simulator
