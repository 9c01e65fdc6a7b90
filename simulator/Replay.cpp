#include "simulator/Replay.h"

#include "simulator/DeviceText.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <mutex>
#include <system_error>

namespace simulator
{

namespace
{

/// Repetitions that a host may have counted; for more, it is taken to have looked at a clock.
constexpr int64_t MaxCounted = 16;

/// How much later than in the log a host may look at its clock.
constexpr std::chrono::milliseconds Tolerance{20};

constexpr std::chrono::hours LongestRound{24};
constexpr size_t LongestLine = 1'000'000;

} // namespace

Replay::Replay(const std::string& file)
{
    const std::string option = "replay=" + file;
    std::ifstream log(file, std::ios::binary);
    if (!log) {
        throw Refusal(option, std::generic_category().message(errno));
    }
    const std::string end = Read(log);
    if (m_calls.empty()) {
        throw Refusal(option, end.empty() ? "the file has no call of OpenComm" : end);
    }
    if (!end.empty()) {
        acgreader::Report(std::string("OpenComm: ") +
                          Refusal(option, end + "; only what precedes it is played").what());
    }
}

/// Returns why the file is read no further; empty at its end.
std::string Replay::Read(std::istream& log)
{
    std::string room(LongestLine, '\0');
    for (size_t number = 1; log.getline(room.data(), LongestLine) || log.gcount() != 0; ++number) {
        const std::string name = "line " + std::to_string(number);
        const bool isLong = log.fail();
        const auto length = static_cast<size_t>(log.gcount()) - (isLong || log.eof() ? 0 : 1);
        auto logged = session::ParseLine({room.data(), length});
        if (isLong || !logged) {
            return name + " isn't one of a recorder's log";
        }
        if (const auto* const gap = std::get_if<session::Gap>(&*logged); gap != nullptr && !m_calls.empty()) {
            return name + " says that calls are missing: " + std::to_string(gap->Calls);
        }
        if (!Add(*std::move(logged))) {
            return name + " repeats calls that aren't there";
        }
    }
    return {};
}

/// False for a repetition of calls that aren't there.
bool Replay::Add(session::LoggedLine line)
{
    if (auto* const call = std::get_if<session::LoggedCall>(&line)) {
        if (!m_calls.empty() || call->Call.starts_with("OpenComm ")) {
            m_calls.push_back(std::move(*call));
        }
        return true;
    }
    const auto* const again = std::get_if<session::Repetition>(&line);
    if (again == nullptr || m_calls.empty()) {
        return true;
    }
    const size_t end = m_calls.size();
    const size_t free = end - (m_rounds.empty() ? 0 : m_rounds.back().End);
    if (free >= again->Calls) {
        const session::LoggedCall& first = m_calls[end - again->Calls];
        m_rounds.push_back({.Begin = end - again->Calls,
                            .End = end,
                            .Lasted = m_calls.back().Start + m_calls.back().Duration - first.Start});
    } else if (free != 0 || m_rounds.empty() || end - m_rounds.back().Begin != again->Calls) {
        return false;
    }
    Round& round = m_rounds.back();
    round.Times = std::min(round.Times + again->Times, MaxCounted + 1);
    round.Lasted = std::min<std::chrono::microseconds>(round.Lasted + again->Duration, LongestRound);
    round.Until = again->Start + again->Duration;
    return true;
}

/// Null, if the call isn't one of a round.
const Replay::Round* Replay::RoundAt(size_t call) const
{
    const auto round = std::ranges::upper_bound(m_rounds, call, {}, &Round::End);
    return round != m_rounds.end() && round->Begin <= call ? &*round : nullptr;
}

bool Replay::IsOver(const Place& place, const Place& later, Clock::time_point now) const
{
    const Round* const round = RoundAt(place.Next);
    if (round == nullptr || place.Completed == 0) {
        return false;
    }
    if (round->Times <= MaxCounted) {
        return place.Completed > round->Times;
    }
    const auto pause = std::clamp<std::chrono::microseconds>(m_calls[later.Next].Start - round->Until,
                                                             std::chrono::microseconds::zero(), Tolerance);
    return now - place.Since >= round->Lasted + pause;
}

std::vector<Replay::Place> Replay::After(const std::vector<Place>& places, Clock::time_point now) const
{
    std::vector<Place> after;
    const auto add = [&](const Place& place) {
        if (std::ranges::find(after, place.Next, &Place::Next) == after.end()) {
            after.push_back(place);
        }
    };
    for (Place place : places) {
        const Round* const round = RoundAt(place.Next);
        if (round != nullptr && round->Begin == place.Next && place.Completed == 0) {
            place.Since = now;
        }
        ++place.Next;
        if (round != nullptr && round->End == place.Next) {
            add({round->Begin, place.Completed + 1, place.Since});
            place = {round->End};
        }
        add(place);
    }
    return after;
}

const std::string* Replay::ResultOf(const std::string& call)
{
    const std::lock_guard lock(m_mutex);
    if (m_places.empty()) {
        return nullptr;
    }
    const auto now = Clock::now();
    const size_t expected = m_places.back().Next;
    std::erase_if(m_places, [&](const Place& place) {
        return place.Next == m_calls.size() || !session::IsSameCall(m_calls[place.Next].Call, call);
    });
    if (m_places.empty()) {
        acgreader::Report("replay: expected " +
                          (expected < m_calls.size() ? m_calls[expected].Call : "no further call") +
                          ", not " + call);
        return nullptr;
    }
    const auto result = [this](const Place& place) -> const std::string& {
        return m_calls[place.Next].Result;
    };
    const auto findOther = [&] {
        return std::ranges::find_if(
            m_places, [&](const Place& place) { return result(place) != result(m_places.front()); });
    };
    for (auto other = findOther(); other != m_places.end(); other = findOther()) {
        m_places.erase(IsOver(m_places.front(), *other, now) ? m_places.begin() : other);
    }
    const std::string& answer = result(m_places.front());
    m_places = After(m_places, now);
    return &answer;
}

} // namespace simulator
