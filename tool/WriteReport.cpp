#include "tool/WriteReport.h"

#include "tool/Failures.h"
#include "tool/System.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

/// Whether the operation with this record may have changed the card: what a reader's letter says of a write
/// that was sent isn't known, and a call that failed as such sent nothing.
bool MayHaveWritten(const CError& record)
{
    return record.Number < 0 &&
           (record.RdrCommand.ends_with(L"write block") || record.RdrCommand.ends_with(L"write vblock"));
}

} // namespace

void WriteReport::Add(std::string what, std::string look)
{
    m_parts.push_back({std::move(what), std::move(look)});
    Tell();
}

void WriteReport::BeginCard(Encoder& encoder)
{
    m_first = SerialNumberOf(encoder);
    m_out.Json["card"] = ToUtf8(m_first);
}

void WriteReport::Sent(Encoder& encoder, sceReturnCode result)
{
    if (result != sceError || MayHaveWritten(*encoder.LastError())) {
        m_parts.at(m_at).Now = State::Sent;
        Tell();
    }
    ThrowIfFailed(encoder, result);
}

void WriteReport::Found(bool isSame)
{
    m_parts.at(m_at++).Now = isSame ? State::Holds : State::Differs;
    Tell();
}

void WriteReport::RequireSameCard(Encoder& encoder)
{
    RequireFirst(SerialNumberOf(encoder));
    for (Part& part : m_parts) {
        part.Now = part.Now == State::Holds     ? State::SurelyHolds
                   : part.Now == State::Differs ? State::SurelyDiffers
                                                : part.Now;
    }
    Tell();
}

void WriteReport::Complete()
{
    for (Part& part : m_parts) {
        part.Now = State::SurelyHolds;
    }
    Tell();
}

void WriteReport::LookForAnotherCard(Encoder& encoder)
{
    std::wstring now;
    if (!WasInterrupted() && encoder.ReadSerialNumber(now) != sceError && !now.empty()) {
        RequireFirst(now);
    }
}

void WriteReport::RequireFirst(const std::wstring& now)
{
    if (now != m_first) {
        m_other = now;
        Tell();
        throw OtherFailure{Format("another card lies in the field: %s; the first one was %s",
                                  ToUtf8(now).c_str(), ToUtf8(m_first).c_str())};
    }
}

std::string WriteReport::InWords(State now) const
{
    const std::string first = ToUtf8(m_first);
    const std::string which =
        m_other.empty() ? "" : Format(", on card %s or on %s", first.c_str(), ToUtf8(m_other).c_str());
    switch (now) {
    case State::Sent:
    case State::Differs:
        return "not known" + which;
    case State::Holds:
        return m_other.empty() ? Format("yes, but perhaps on another card than %s", first.c_str())
                               : "yes" + which;
    case State::SurelyHolds:
        return "yes";
    case State::SurelyDiffers:
        return "not known; it reads back as something else";
    default:
        return "no";
    }
}

void WriteReport::Tell()
{
    std::string lines;
    JsonObject writes = JsonObject::array();
    size_t confirmed = 0;
    const Part* unknown = nullptr;
    for (const Part& part : m_parts) {
        lines += Format("\n  written   %s: %s", InWords(part.Now).c_str(), part.What.c_str());
        const bool isKnown = part.Now == State::SurelyHolds || part.Now == State::NotWritten;
        confirmed += part.Now == State::SurelyHolds ? 1 : 0;
        unknown = unknown == nullptr && !isKnown ? &part : unknown;
        writes.push_back({{"what", part.What},
                          {"written", !isKnown                         ? "unknown"
                                      : part.Now == State::SurelyHolds ? "yes"
                                                                       : "no"}});
    }
    JsonObject& json = m_out.Json;
    json["written"] = unknown != nullptr            ? "unknown"
                      : confirmed == 0              ? "no"
                      : confirmed == m_parts.size() ? "yes"
                                                    : "partly";
    if (m_parts.size() > 1) {
        json["writes"] = writes;
    }
    json["next"] = unknown != nullptr ? JsonObject(unknown->Look) : JsonObject();
    m_out.Outcome = lines + (unknown != nullptr ? "\n  next      " + unknown->Look : "");
}

} // namespace acg::tool
