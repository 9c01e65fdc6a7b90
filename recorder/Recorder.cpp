#include "recorder/Recorder.h"

#include "acg/platform/AnsiText.h"
#include "acg/platform/LibraryFile.h"
#include "acg/platform/Process.h"
#include "recorder/System.h"

#include <cstdlib>
#include <mutex>

namespace recorder
{

namespace
{

namespace fs = std::filesystem;

/// Keeps the system's error code of the host, and then that of the next library.
class KeptError
{
public:
    KeptError() = default;
    ~KeptError() { SetLastError(m_error); }
    KeptError(const KeptError&) = delete;
    KeptError& operator=(const KeptError&) = delete;

    void Restore() const { SetLastError(m_error); }
    void Take() { m_error = LastError(); }

private:
    uint32_t m_error = LastError();
};

fs::path Beside(const fs::path& file)
{
    return acg::OwnFolder() / file;
}

fs::path NextLibraryFile()
{
    const fs::path file = acg::EnvironmentVariable("ACG_READER_LIBRARY");
    return file.empty() ? Beside(fs::path("vendor") / acg::LibraryFileName("ACGReader330"))
                        : fs::absolute(file);
}

fs::path LogFile()
{
    const fs::path file = acg::EnvironmentVariable("ACG_READER_LOG");
    return file.empty() ? Beside("ACGReader330.log") : file;
}

/// As in 2026-11-23 09:42:13 UTC.
std::string DateText()
{
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const year_month_day date{floor<days>(now)};
    const hh_mm_ss time{now - floor<days>(now)};
    const auto twoDigits = [](auto number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return std::to_string(static_cast<int>(date.year())) + '-' +
           twoDigits(static_cast<unsigned>(date.month())) + '-' +
           twoDigits(static_cast<unsigned>(date.day())) + ' ' + twoDigits(time.hours().count()) + ':' +
           twoDigits(time.minutes().count()) + ':' + twoDigits(time.seconds().count()) + " UTC";
}

/// The text of a byte string, which is wiped and freed.
std::string TextOfByteString(char* bytes)
{
    return std::string(acg::ByteString(bytes).Bytes());
}

/// Binds a function; or throws, with the reason.
template <class Function>
void Bind(const fs::path& file, const char* name, Function& function, Function own)
{
    const acg::EntryPoint entry = acg::FindInFile(file.native(), name);
    if (!entry.LibraryLoaded) {
        std::error_code ignored;
        throw std::runtime_error(
            (fs::exists(file, ignored) ? "it can't be loaded" : "there is no such file") +
            (", system error " + std::to_string(entry.SystemError)));
    }
    if (entry.Address == nullptr) {
        throw std::runtime_error(std::string("it lacks the function ") + name);
    }
    function = reinterpret_cast<Function>(entry.Address);
    if (function == own) {
        throw std::runtime_error("it is the recorder itself");
    }
}

} // namespace

template <class Call, class Describe, class Result>
Result Recorder::Pass(std::string call, const Call& next, const Describe& describe, Result closed)
{
    KeptError error;
    std::shared_ptr<const NextLibrary> library;
    {
        const std::lock_guard lock(m_mutex);
        Begin(/*IsOpening=*/call.starts_with("OpenComm "));
        library = m_next;
    }
    const auto start = Clock::now();
    error.Restore();
    Result result = library ? next(*library) : std::move(closed);
    error.Take();
    const auto end = Clock::now();
    try {
        using std::chrono::duration_cast;
        using std::chrono::microseconds;
        LoggedCall ended{std::move(call), describe(result), duration_cast<microseconds>(start - m_start),
                         duration_cast<microseconds>(end - start)};
        const std::lock_guard lock(m_mutex);
        m_log.Add(std::move(ended));
        if (m_isEnding) {
            m_log.Flush();
        }
    } catch (...) { // out of memory: the call has been made, and its result counts
        const std::lock_guard lock(m_mutex);
        m_log.Miss();
    }
    return result;
}

void Recorder::Begin(bool IsOpening)
{
    if (!m_begun) {
        m_begun = true;
        m_start = Clock::now();
        m_log.Open(LogFile());
        Load();
    } else if (!m_next && IsOpening) {
        Load();
    }
}

void Recorder::Load()
{
    fs::path file;
    try {
        file = NextLibraryFile();
        m_log.Note(DateText() + ", next library: " + acg::Utf8Of(file));
        auto next = std::make_shared<NextLibrary>();
        Bind(file, "OpenComm", next->OpenComm, &::OpenComm);
        Bind(file, "SetCommTimeout", next->SetCommTimeout, &::SetCommTimeout);
        Bind(file, "SetCommProtocol", next->SetCommProtocol, &::SetCommProtocol);
        Bind(file, "GetCommProtocol", next->GetCommProtocol, &::GetCommProtocol);
        Bind(file, "GetCommBaudRate", next->GetCommBaudRate, &::GetCommBaudRate);
        Bind(file, "GetCommTimeout", next->GetCommTimeout, &::GetCommTimeout);
        Bind(file, "DetectReader", next->DetectReader, &::DetectReader);
        Bind(file, "OpenReader", next->OpenReader, &::OpenReader);
        Bind(file, "GetReaderType", next->GetReaderType, &::GetReaderType);
        Bind(file, "GetDeviceID", next->GetDeviceID, &::GetDeviceID);
        Bind(file, "SendCommandGetData", next->SendCommandGetData, &::SendCommandGetData);
        Bind(file, "CloseReader", next->CloseReader, &::CloseReader);
        Bind(file, "CloseComm", next->CloseComm, &::CloseComm);
        m_next = std::move(next);
    } catch (const std::runtime_error& reason) {
        const std::string note =
            "the next library can't be used: " + acg::Utf8Of(file) + ": " + reason.what();
        m_log.Note(note);
        exports::Report(note);
    }
}

void Recorder::End() noexcept
{
    m_isEnding = true;
    // Other threads, which at the end of a process Windows has stopped wherever they were, may have the lock.
    if (!m_mutex.try_lock()) {
        return;
    }
    const std::lock_guard lock(m_mutex, std::adopt_lock);
    try {
        m_log.Flush();
    } catch (...) { // out of memory
    }
}

Recorder::Handle Recorder::OpenComm(Text Device, uint8_t Autodetect, exports::CommSettings& Settings)
{
    return Pass(OpenCommText(Device, Autodetect, Settings), [&](const NextLibrary& next) {
        return next.OpenComm(Device.CText(), Autodetect, &Settings);
    });
}

int32_t Recorder::SetCommTimeout(Handle Comm, int32_t Timeout)
{
    return Pass(CallText("SetCommTimeout", {Comm, Timeout}),
                [&](const NextLibrary& next) { return next.SetCommTimeout(Comm, Timeout); });
}

int32_t Recorder::SetCommProtocol(Handle Comm, uint8_t Protocol)
{
    return Pass(CallText("SetCommProtocol", {Comm, Protocol}),
                [&](const NextLibrary& next) { return next.SetCommProtocol(Comm, Protocol); });
}

uint8_t Recorder::GetCommProtocol(Handle Comm)
{
    return Pass(CallText("GetCommProtocol", {Comm}),
                [&](const NextLibrary& next) { return next.GetCommProtocol(Comm); });
}

int32_t Recorder::GetCommBaudRate(Handle Comm)
{
    return Pass(CallText("GetCommBaudRate", {Comm}),
                [&](const NextLibrary& next) { return next.GetCommBaudRate(Comm); });
}

int32_t Recorder::GetCommTimeout(Handle Comm)
{
    return Pass(CallText("GetCommTimeout", {Comm}),
                [&](const NextLibrary& next) { return next.GetCommTimeout(Comm); });
}

std::string Recorder::DetectReader(Handle Comm, Buffer Room)
{
    return Pass(CallText("DetectReader", {Comm}), [&](const NextLibrary& next) {
        return TextOfByteString(next.DetectReader(Comm, Room.data()));
    });
}

Recorder::Handle Recorder::OpenReader(Handle Comm, uint8_t Id, int32_t Third)
{
    return Pass(CallText("OpenReader", {Comm, Id, Third}),
                [&](const NextLibrary& next) { return next.OpenReader(Comm, Id, Third); });
}

std::string Recorder::GetReaderType(Handle Reader, Buffer Room)
{
    return Pass(CallText("GetReaderType", {Reader}), [&](const NextLibrary& next) {
        return TextOfByteString(next.GetReaderType(Reader, Room.data()));
    });
}

std::string Recorder::GetDeviceID(Handle Reader, Buffer Room)
{
    return Pass(CallText("GetDeviceID", {Reader}), [&](const NextLibrary& next) {
        return TextOfByteString(next.GetDeviceID(Reader, Room.data()));
    });
}

std::string Recorder::SendCommandGetData(Handle Reader, Text Command, Text Data, Buffer Room)
{
    return Pass(
        CommandText(Reader, Command, Data),
        [&](const NextLibrary& next) {
            return TextOfByteString(
                next.SendCommandGetData(Reader, Command.CText(), Data.CText(), Room.data()));
        },
        [&](const std::string& reply) { return ReplyText(Command, Data, reply); },
        ReaderLibrary::SendCommandGetData(Reader, Command, Data, Room));
}

int32_t Recorder::CloseReader(Handle Reader)
{
    return Pass(CallText("CloseReader", {Reader}),
                [&](const NextLibrary& next) { return next.CloseReader(Reader); });
}

int32_t Recorder::CloseComm(Handle Comm)
{
    return Pass(CallText("CloseComm", {Comm}), [&](const NextLibrary& next) { return next.CloseComm(Comm); });
}

} // namespace recorder

/// One for the process, never destroyed: a host may close its handles as late as when its own static objects
/// are destroyed.
exports::ReaderLibrary& exports::TheLibrary()
{
    static auto& library = *new recorder::Recorder;
    [[maybe_unused]] static const int registered = std::atexit([] { library.End(); });
    return library;
}
