// The thirteen functions of the reader library, and what stands behind their handles.
//
// Each function answers every argument: a handle that isn't open gives 0, empty text or the status letter of
// an unknown command, and a null text is an empty one.
#include "simulator/ByteString.h"
#include "simulator/CardBox.h"
#include "simulator/DeviceText.h"
#include "simulator/Hex.h"
#include "simulator/Reader.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#ifdef _WIN32
#define READER_CALL __stdcall
#else
#define READER_CALL
#endif

struct CommSettings {
    int32_t BaudRate;
    uint8_t Protocol;
    uint8_t Reserved[3];
};
static_assert(sizeof(CommSettings) == 8);

namespace
{

#ifdef _WIN32 // the variant of the compiler without a thread library has no std::mutex
class Mutex
{
public:
    void lock() { AcquireSRWLockExclusive(&m_lock); }
    void unlock() { ReleaseSRWLockExclusive(&m_lock); }

private:
    SRWLOCK m_lock = SRWLOCK_INIT;
};
#else
using Mutex = std::mutex;
#endif

using simulator::Card;
using simulator::Device;
using simulator::NewByteString;
using simulator::Reader;

constexpr int32_t DefaultTimeout = 1000;

struct Comm {
    Device Named;
    Card* InField;
    int32_t BaudRate;
    uint8_t Protocol;
    int32_t Timeout = DefaultTimeout;
};

struct OpenedReader {
    uint32_t CommHandle;
    uint8_t Id;
    Reader Opened;
};

struct Library {
    Mutex Lock;
    simulator::CardBox Cards;
    std::map<uint32_t, Comm> Comms;
    std::map<uint32_t, OpenedReader> Readers;
    uint32_t LastHandle = 0; ///< lines and readers share one count, so that neither is taken for the other
};

/// The one library of the process, never destroyed: a host may close its handles as late as when its own
/// static objects go. The cards last as long as the process, so the library stays loaded whatever its hosts
/// let go of.
Library& TheLibrary()
{
    static Library& library = []() -> Library& {
#ifdef _WIN32 // elsewhere the linker has marked it so
        HMODULE self = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                           reinterpret_cast<LPCWSTR>(&TheLibrary), &self);
#endif
        return *new Library;
    }();
    return library;
}

/// What the body makes of the library with all other threads locked out. No exception gets past here.
template <class Result, class Body>
Result Locked(Result onFailure, Body body) noexcept
{
    try {
        Library& library = TheLibrary();
        const std::lock_guard lock(library.Lock);
        return body(library);
    } catch (...) {
        return onFailure;
    }
}

/// What the body makes of the open line or reader; `otherwise` where the handle isn't open.
template <class Opened, class Result, class Body>
Result With(std::map<uint32_t, Opened> Library::*all, uint32_t handle, Result otherwise,
            const Body& body) noexcept
{
    return Locked(otherwise, [&](Library& library) -> Result {
        const auto found = (library.*all).find(handle);
        return found == (library.*all).end() ? otherwise : body(found->second);
    });
}

template <class Value>
Value Get(uint32_t comm, Value Comm::*setting) noexcept
{
    return With(&Library::Comms, comm, Value(), [&](const Comm& line) { return line.*setting; });
}

template <class Value>
int32_t Set(uint32_t comm, Value Comm::*setting, Value value) noexcept
{
    return With(&Library::Comms, comm, 0, [&](Comm& line) {
        line.*setting = value;
        return 0;
    });
}

std::string_view TextOf(const char* text)
{
    return text != nullptr ? text : "";
}

} // namespace

// The autodetect byte changes nothing: a detection would find the very settings that it is given. The texts'
// buffers are left alone, since a text comes back as the result.
extern "C" {

uint32_t READER_CALL OpenComm(const char* DeviceText, uint8_t /*autodetect*/, const CommSettings* Settings)
{
    return Locked(0U, [&](Library& library) {
        const std::optional<Device> device = simulator::ParseDeviceText(TextOf(DeviceText));
        const std::optional<Card*> card = device ? library.Cards.Lay(device->Card) : std::nullopt;
        if (!card || Settings == nullptr) {
            return 0U;
        }
        library.Comms.insert(
            {++library.LastHandle, {*device, *card, Settings->BaudRate, Settings->Protocol}});
        return library.LastHandle;
    });
}

int32_t READER_CALL SetCommTimeout(uint32_t CommHandle, int32_t Timeout)
{
    return Set(CommHandle, &Comm::Timeout, Timeout);
}

int32_t READER_CALL SetCommProtocol(uint32_t CommHandle, uint8_t Protocol)
{
    return Set(CommHandle, &Comm::Protocol, Protocol);
}

uint8_t READER_CALL GetCommProtocol(uint32_t CommHandle)
{
    return Get(CommHandle, &Comm::Protocol);
}

int32_t READER_CALL GetCommBaudRate(uint32_t CommHandle)
{
    return Get(CommHandle, &Comm::BaudRate);
}

int32_t READER_CALL GetCommTimeout(uint32_t CommHandle)
{
    return Get(CommHandle, &Comm::Timeout);
}

char* READER_CALL DetectReader(uint32_t CommHandle, char* /*buffer*/)
{
    return NewByteString(With(&Library::Comms, CommHandle, std::string(), [](const Comm& line) {
        return std::string(line.Named.ReaderIds.begin(), line.Named.ReaderIds.end());
    }));
}

uint32_t READER_CALL OpenReader(uint32_t CommHandle, uint8_t Id, uint32_t /*reserved*/)
{
    return With(&Library::Comms, CommHandle, 0U, [&](const Comm& line) {
        if (std::ranges::count(line.Named.ReaderIds, Id) == 0) {
            return 0U;
        }
        Library& library = TheLibrary();
        library.Readers.insert({++library.LastHandle, {CommHandle, Id, {line.Named, line.InField}}});
        return library.LastHandle;
    });
}

char* READER_CALL GetReaderType(uint32_t ReaderHandle, char* /*buffer*/)
{
    return NewByteString(With(&Library::Readers, ReaderHandle, std::string(),
                              [](const OpenedReader& reader) { return reader.Opened.Type(); }));
}

char* READER_CALL GetDeviceID(uint32_t ReaderHandle, char* /*buffer*/)
{
    return NewByteString(With(&Library::Readers, ReaderHandle, std::string(), [](const OpenedReader& reader) {
        return "Simulated reader " + simulator::ToHex({&reader.Id, 1});
    }));
}

char* READER_CALL SendCommandGetData(uint32_t ReaderHandle, const char* Command, const char* Data,
                                     char* /*buffer*/)
{
    const std::string notOpen = simulator::StatusReply(simulator::StatusUnknownCommand);
    return NewByteString(With(&Library::Readers, ReaderHandle, notOpen, [&](OpenedReader& reader) {
        return reader.Opened.Send(TextOf(Command), TextOf(Data));
    }));
}

int32_t READER_CALL CloseReader(uint32_t ReaderHandle)
{
    return Locked(0, [&](Library& library) {
        library.Readers.erase(ReaderHandle);
        return 0;
    });
}

// The readers on the line go with it.
int32_t READER_CALL CloseComm(uint32_t CommHandle)
{
    return Locked(0, [&](Library& library) {
        library.Comms.erase(CommHandle);
        std::erase_if(library.Readers,
                      [&](const auto& entry) { return entry.second.CommHandle == CommHandle; });
        return 0;
    });
}

} // extern "C"
