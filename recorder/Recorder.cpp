#include "recorder/Recorder.h"

#include "acg/platform/AnsiText.h"
#include "acg/platform/LibraryFile.h"
#include "acg/platform/Process.h"
#include "recorder/System.h"

#include <cstdlib>
#include <mutex>
#include <type_traits>

namespace recorder
{

namespace
{

namespace fs = std::filesystem;

#define ACG_IS_FORWARDED(name)                                                                               \
    static_assert(!std::is_same_v<decltype(&Recorder::name), decltype(&acgreader::ReaderLibrary::name)>);
ACG_READER_FUNCTIONS(ACG_IS_FORWARDED)
#undef ACG_IS_FORWARDED

/// What the system's error code is at the end: the host's until the next library is called, and then that
/// library's.
struct FinalLastError {
    uint32_t Error = LastError();

    FinalLastError() = default;
    ~FinalLastError() { SetLastError(Error); }
    FinalLastError(const FinalLastError&) = delete;
    FinalLastError& operator=(const FinalLastError&) = delete;
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

/// An argument as the next library takes it.
template <class Argument>
auto Plain(Argument& argument)
{
    if constexpr (std::is_same_v<Argument, acgreader::CommSettings>) {
        return &argument;
    } else if constexpr (std::is_arithmetic_v<Argument>) {
        return argument;
    } else {
        return argument.data(); // a text or a buffer
    }
}

/// Finds a function of the next library; or throws, with the reason.
acg::EntryPoint::Function Find(const fs::path& file, acgreader::Function function)
{
    const acg::EntryPoint entry = acg::FindInFile(file.native(), NameOf(function));
    if (!entry.LibraryLoaded) {
        std::error_code ignored;
        throw std::runtime_error(
            (fs::exists(file, ignored) ? "it can't be loaded" : "there is no such file") +
            (", system error " + std::to_string(entry.SystemError)));
    }
    if (entry.Address == nullptr) {
        throw std::runtime_error(std::string("it lacks the function ") + NameOf(function));
    }
    if (entry.Address == acgreader::FindFunction(function)) {
        throw std::runtime_error("it is the recorder itself");
    }
    return entry.Address;
}

} // namespace

template <acgreader::Function function, class Result, class Describe, class... Arguments>
Result Recorder::Call(Result closed, const Describe& describe, std::string call, Arguments&... arguments)
{
    FinalLastError last;
    std::shared_ptr<const NextLibrary> library;
    {
        const std::lock_guard lock(m_mutex);
        Begin(/*isOpening=*/function == acgreader::Function::OpenComm);
        library = m_next;
    }
    const auto start = Clock::now();
    SetLastError(last.Error);
    Result result = std::move(closed);
    if (library) {
        void (*const next)() = (*library)[static_cast<size_t>(function)];
        const auto given = reinterpret_cast<acgreader::Pointer<function>>(next)(Plain(arguments)...);
        if constexpr (std::is_same_v<Result, std::string>) {
            result = acg::ByteString(given).Bytes(); // which is wiped and freed
        } else {
            result = given;
        }
    }
    last.Error = LastError();
    const auto end = Clock::now();
    try {
        using std::chrono::duration_cast;
        using std::chrono::microseconds;
        session::LoggedCall ended{std::move(call), describe(result),
                                  duration_cast<microseconds>(start - m_start),
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

void Recorder::Begin(bool isOpening)
{
    if (!m_begun) {
        m_begun = true;
        m_start = Clock::now();
        const fs::path log = acg::EnvironmentVariable("ACG_READER_LOG");
        m_log.Open(log.empty() ? Beside("ACGReader330.log") : log);
        Load();
    } else if (!m_next && isOpening) {
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
        for (int function = 0; function < acgreader::FunctionCount; ++function) {
            next->at(static_cast<size_t>(function)) = Find(file, static_cast<acgreader::Function>(function));
        }
        m_next = std::move(next);
    } catch (const std::runtime_error& reason) {
        const std::string note =
            "the next library can't be used: " + acg::Utf8Of(file) + ": " + reason.what();
        m_log.Note(note);
        acgreader::Report(note);
    }
}

void Recorder::End() noexcept
{
    m_isEnding = true;
    // Another thread may hold the lock for ever: at the end of a process Windows stops them wherever they
    // are.
    if (!m_mutex.try_lock()) {
        return;
    }
    const std::lock_guard lock(m_mutex, std::adopt_lock);
    try {
        m_log.Flush();
    } catch (...) { // out of memory
    }
}

} // namespace recorder

/// One for the process, never destroyed: a host may close its handles as late as when its own static objects
/// are destroyed.
acgreader::ReaderLibrary& acgreader::TheLibrary()
{
    static auto& library = *new recorder::Recorder;
    [[maybe_unused]] static const int registered = std::atexit([] { library.End(); });
    return library;
}
