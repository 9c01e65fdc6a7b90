// A reader library that passes every call on to the next one and writes it to a log, without keys.
#pragma once

#include "acg/platform/Mutex.h"
#include "recorder/LogWriter.h"
#include "session/CallForwarder.h"

#include <array>
#include <atomic>
#include <chrono>
#include <memory>

namespace recorder
{

/// The functions of the next library, by acgreader::Function.
using NextLibrary = std::array<void (*)(), acgreader::FunctionCount>;

/// The session begins at the first call, which opens the log and loads the next library. If the library can't
/// be used, every function returns what it does for a handle that isn't open, and each OpenComm tries again.
/// If the log can't be written, the calls are passed on all the same.
///
/// Its functions can be called from several threads, and the next library's are then too. After a call the
/// system's error code is the one that the next library has left.
class Recorder final : public session::CallForwarder<Recorder>
{
public:
    template <acgreader::Function function, class Result, class Describe, class... Arguments>
    Result Call(Result closed, const Describe& describe, std::string call, Arguments&... arguments);

    /// The process ends: from now on nothing is held back from the log.
    void End() noexcept;

private:
    using Clock = std::chrono::steady_clock;

    void Begin(bool isOpening);
    void Load();

    acg::Mutex m_mutex;
    LogWriter m_log;
    std::atomic<bool> m_isEnding = false;
    Clock::time_point m_start;
    bool m_begun = false;
    std::shared_ptr<const NextLibrary> m_next; ///< null if it can't be used
};

} // namespace recorder
