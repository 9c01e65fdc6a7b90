// The simulated reader library: its links and readers, by their handles.
#pragma once

#include "abi/ReaderLibrary.h"
#include "acg/platform/Mutex.h"
#include "simulator/CardBox.h"
#include "simulator/DeviceText.h"
#include "simulator/Reader.h"
#include "simulator/Replay.h"

#include <map>
#include <memory>
#include <mutex>

namespace simulator
{

/// Its functions can be called from several threads. The autodetect byte changes nothing: a detection would
/// find the very settings that it is given. The texts' buffers are left alone, since a text comes back as the
/// result.
class Library final : public acgreader::ReaderLibrary
{
public:
    /// If the result is 0, a line on the standard error says why.
    Handle OpenComm(Text deviceText, uint8_t autodetect, acgreader::CommSettings& settings) override;
    /// Opens a device that has been read already. Throws a Refusal if it can't be.
    Handle Open(const Device& device, const acgreader::CommSettings& settings);
    /// What answers the next call: the replay once a device has named one, else this library. It lives as
    /// long as this.
    [[nodiscard]] acgreader::ReaderLibrary& Answering();
    int32_t SetCommTimeout(Handle comm, int32_t value) override { return Set(comm, &Line::Timeout, value); }
    int32_t SetCommProtocol(Handle comm, uint8_t value) override { return Set(comm, &Line::Protocol, value); }
    uint8_t GetCommProtocol(Handle comm) override { return Get(comm, &Line::Protocol); }
    int32_t GetCommBaudRate(Handle comm) override { return Get(comm, &Line::BaudRate); }
    int32_t GetCommTimeout(Handle comm) override { return Get(comm, &Line::Timeout); }
    std::string DetectReader(Handle comm, Buffer) override;
    Handle OpenReader(Handle comm, uint8_t id, int32_t third) override;
    std::string GetReaderType(Handle reader, Buffer) override;
    std::string GetDeviceID(Handle reader, Buffer) override;
    std::string SendCommandGetData(Handle reader, Text command, Text data, Buffer) override;
    int32_t CloseReader(Handle reader) override;
    /// The readers on the line go with it.
    int32_t CloseComm(Handle comm) override;

private:
    struct Line {
        Device Options;
        Card* InField;
        int32_t BaudRate;
        uint8_t Protocol;
        int32_t Timeout = 1000;
    };
    struct OpenedReader {
        Handle Comm;
        uint8_t Id;
        Reader Device;
    };

    /// What the body makes of the open line or reader with all other threads locked out; `closed` if the
    /// handle isn't open.
    template <class Opened, class Result, class Body>
    Result With(std::map<Handle, Opened>& all, Handle handle, Result closed, const Body& body)
    {
        const std::lock_guard lock(m_mutex);
        const auto found = all.find(handle);
        return found == all.end() ? closed : body(found->second);
    }
    template <class Value>
    Value Get(Handle comm, Value Line::*setting)
    {
        return With(m_lines, comm, Value(), [&](const Line& line) { return line.*setting; });
    }
    template <class Value>
    int32_t Set(Handle comm, Value Line::*setting, Value value)
    {
        return With(m_lines, comm, 0, [&](Line& line) {
            line.*setting = value;
            return 0;
        });
    }

    acg::Mutex m_mutex;
    CardBox m_cards;
    std::map<Handle, Line> m_lines;
    std::map<Handle, OpenedReader> m_readers;
    std::unique_ptr<Replay> m_replay; ///< null if no device has named one
    Handle m_lastHandle = 0; ///< lines and readers share one count, so that neither is taken for the other
};

} // namespace simulator
