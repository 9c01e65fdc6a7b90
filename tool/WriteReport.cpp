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

const std::wstring& WriteReport::BeginCard(Encoder& encoder)
{
    m_first = SerialNumberOf(encoder);
    m_out.Json["card"] = ToUtf8(m_first);
    return m_first;
}

void WriteReport::NoteSending(Encoder& encoder, sceReturnCode result)
{
    if (result != sceError || MayHaveWritten(*encoder.LastError())) {
        Tell("unknown", "not known");
    }
    ThrowIfFailed(encoder, result);
}

bool WriteReport::ReadBack(Encoder& encoder, const std::function<bool()>& isTaken)
{
    bool isSame = false;
    try {
        isSame = isTaken();
    } catch (...) {
        std::wstring now;
        if (!WasInterrupted() && encoder.ReadSerialNumber(now) != sceError && !now.empty()) {
            RequireFirst(now);
        }
        throw;
    }
    if (isSame) {
        Tell("unknown", "yes, but perhaps on another card than " + ToUtf8(m_first));
    }
    RequireFirst(SerialNumberOf(encoder), isSame);
    Tell(isSame ? "yes" : "unknown", isSame ? "yes" : "not known; it reads back as something else");
    ++m_at;
    return isSame;
}

void WriteReport::RequireFirst(const std::wstring& now, bool isSame)
{
    if (now == m_first) {
        return;
    }
    const std::string first = ToUtf8(m_first);
    const std::string other = ToUtf8(now);
    if (m_parts.at(m_at).Written == "unknown") {
        Tell("unknown", (isSame ? "yes, on card " : "not known, on card ") + first + " or on " + other);
    }
    throw OtherFailure{
        Format("another card lies in the field: %s; the first one was %s", other.c_str(), first.c_str())};
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
    for (const Part& part : m_parts) {
        lines += Format("\n  written   %s: %s", part.InWords.c_str(), part.What.c_str());
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
