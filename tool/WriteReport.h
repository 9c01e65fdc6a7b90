// What became of what a command writes, said with whatever ends the command.
#pragma once

#include "tool/CardSession.h"
#include "tool/Output.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace acg::tool
{

/// What a command writes, in parts, one after the other. After each step the output holds what is to be said
/// if the command ends there, and the JSON object has the members
///
///     written   "yes": all of it; "no": nothing was changed; "partly": as "writes" says; or "unknown"
///     writes    if there are several parts, "what" and "written" of each
///     next      the command that shows what is unknown, or null
///     card      the serial number of the card with which the command began
///
/// A part of a card counts as written once it has been read back, and the card in the field is the first one.
class WriteReport
{
public:
    explicit WriteReport(Output& out) : m_out(out) {}

    /// A part that is written after those before it. what: "block 4". look: the command that shows it.
    void Add(std::string what, std::string look);

    /// Forgets all parts, before the first one is written.
    void Clear();

    /// Remembers the card of the session. Throws as CardSession::SerialNumber does.
    void BeginCard(CardSession& card);

    /// To be called with the failure of the operation that writes the next part, if it failed: throws it as
    /// CardFailure, or AnotherCard if another card lies in the field now; and Interruption after Ctrl-C.
    void NoteSending(CardSession& card, const std::optional<CError>& failure);

    /// Calls isTaken, which logs in anew, reads the part back and says whether it holds what was written;
    /// returns that, and goes on to the next part. Throws AnotherCard if another card lies in the field
    /// afterwards, even if the reading failed; otherwise what isTaken or CardSession::Select throws.
    [[nodiscard]] bool ReadBack(CardSession& card, const std::function<bool()>& isTaken);

    /// No part has been written, or may have been.
    [[nodiscard]] bool HasWrittenNothing() const;

    /// The part is a file, which isn't read back.
    void ConfirmFile() { Tell("yes", "yes"); }

private:
    struct Part {
        std::string What;
        std::string Look;
        std::string Written = "no"; ///< as in the JSON
        std::string InWords = "no";
    };

    /// Selects the card; throws AnotherCard if it isn't the first one. isSame: the part has been read back,
    /// and holds what was to be written.
    void RequireFirstCard(CardSession& card, bool isSame);
    /// After a failure: throws AnotherCard if another card lies in the field.
    void LookForAnotherCard(CardSession& card);
    /// Of the part that is being written.
    void Tell(std::string written, std::string inWords);
    void Tell();

    Output& m_out;
    std::vector<Part> m_parts;
    size_t m_at = 0; ///< the part that is being written
};

} // namespace acg::tool
