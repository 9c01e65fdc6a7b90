#include "tool/WriteReport.h"

#include "tool/Failures.h"
#include "tool/System.h"
#include "tool/Text.h"

#include <algorithm>

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

void WriteReport::Clear()
{
    m_parts.clear();
    m_out.Json.erase("writes");
    Tell();
}

void WriteReport::BeginCard(CardSession& card)
{
    m_out.Json["card"] = card.SerialNumber();
}

void WriteReport::NoteSending(CardSession& card, const std::optional<CError>& failure)
{
    if (!failure || MayHaveWritten(*failure)) {
        Tell("unknown", "not known");
    }
    if (WasInterrupted()) {
        throw Interruption{};
    }
    if (failure) {
        LookForAnotherCard(card);
        throw CardFailure{*failure};
    }
}

bool WriteReport::ReadBack(CardSession& card, const std::function<bool()>& isTaken)
{
    RequireFirstCard(card, /*isSame=*/false); // also so that the reading logs in again
    bool isSame = false;
    try {
        isSame = isTaken();
    } catch (...) {
        LookForAnotherCard(card);
        throw;
    }
    if (isSame) {
        Tell("unknown", "yes, but perhaps on another card than " + card.SerialNumber());
    }
    RequireFirstCard(card, isSame);
    Tell(isSame ? "yes" : "unknown", isSame ? "yes" : "not known; it doesn't read back as written");
    ++m_at;
    return isSame;
}

bool WriteReport::HasWrittenNothing() const
{
    return std::ranges::all_of(m_parts, [](const Part& part) { return part.Written == "no"; });
}

void WriteReport::RequireFirstCard(CardSession& card, bool isSame)
{
    try {
        card.Select();
    } catch (const AnotherCard& other) {
        if (m_parts.at(m_at).Written == "unknown") {
            Tell("unknown", (isSame ? "yes, on card " : "not known, on card ") + card.SerialNumber() +
                                " or on " + other.Now);
        }
        throw;
    }
}

void WriteReport::LookForAnotherCard(CardSession& card)
{
    try {
        RequireFirstCard(card, /*isSame=*/false);
    } catch (const CardFailure&) { // no card at all
    }
}

void WriteReport::Tell(std::string written, std::string inWords)
{
    m_parts.at(m_at).Written = std::move(written);
    m_parts.at(m_at).InWords = std::move(inWords);
    Tell();
}

void WriteReport::Tell()
{
    std::string lines;
    JsonObject writes = JsonObject::array();
    size_t confirmed = 0;
    const Part* unknown = nullptr;
    std::string line;
    for (size_t at = 0; at < m_parts.size(); ++at) {
        const Part& part = m_parts[at];
        line += (line.empty() ? part.InWords + ": " : ", ") + part.What;
        if (at + 1 == m_parts.size() || m_parts[at + 1].InWords != part.InWords) {
            lines += "\n  written   " + Wrap(line, /*indent=*/12);
            line.clear();
        }
        if (part.Written == "yes") {
            ++confirmed;
        } else if (part.Written == "unknown" && unknown == nullptr) {
            unknown = &part;
        }
        writes.push_back({{"what", part.What}, {"written", part.Written}});
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
