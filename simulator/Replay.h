// A reader library that answers from the log of a recorded session.
#pragma once

#include "acg/platform/Mutex.h"
#include "session/CallForwarder.h"

#include <chrono>
#include <istream>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace simulator
{

/// Plays the calls of a log from its first OpenComm on: each has to be the next one, and returns what it did
/// then. The device and masked keys may differ. The first call that isn't next is reported on the standard
/// error; it and all that follow return what they do for a handle that isn't open.
///
/// Calls that were repeated are answered as often as they are made, at least once. A call that may continue a
/// round or be the one after it, with another result, is taken for the one after it once the round has been
/// repeated as often as in the log (up to 16 times: the host may have counted), or for as long as in the log
/// (above: it looked at a clock).
class Replay final : public session::CallForwarder<Replay>
{
public:
    /// Throws a Refusal if the file can't be read or isn't a log with an OpenComm in it. A log that can't
    /// be read to its end, or has a gap, is played up to there, and the standard error says so.
    explicit Replay(const std::string& file);

    template <acgreader::Function, class Result, class Describe, class... Arguments>
    Result Call(Result closed, const Describe& /*describe*/, const std::string& call, Arguments&...)
    {
        const std::string* const result = ResultOf(call);
        if (result == nullptr) {
            return closed;
        }
        if constexpr (std::is_same_v<Result, std::string>) {
            return session::ParseText(*result);
        } else {
            return static_cast<Result>(session::ParseNumber(*result));
        }
    }

private:
    using Clock = std::chrono::steady_clock;

    /// The calls from Begin up to End, without it, were made once and then Times times more.
    struct Round {
        size_t Begin;
        size_t End;
        int64_t Times;                    ///< no more than it takes to be many
        std::chrono::microseconds Lasted; ///< all of them, without the time between two lines of the log
        std::chrono::microseconds Until;  ///< since the session began
    };
    /// Where the session may be.
    struct Place {
        size_t Next = 0;
        int64_t Completed = 0;     ///< how often the round that the next call is in has been made
        Clock::time_point Since{}; ///< the first call of the round
    };

    [[nodiscard]] std::string Read(std::istream& log);
    [[nodiscard]] bool Add(session::LoggedLine line);
    [[nodiscard]] const Round* RoundAt(size_t call) const;
    [[nodiscard]] bool IsOver(const Place& place, const Place& later, Clock::time_point now) const;
    [[nodiscard]] std::vector<Place> After(const std::vector<Place>& places, Clock::time_point now) const;
    /// Null if the call isn't the next one, or another wasn't before.
    [[nodiscard]] const std::string* ResultOf(const std::string& call);

    acg::Mutex m_mutex;
    std::vector<session::LoggedCall> m_calls;
    std::vector<Round> m_rounds;    ///< one after the other
    std::vector<Place> m_places{1}; ///< the least advanced first; none after a call that wasn't next
};

} // namespace simulator
