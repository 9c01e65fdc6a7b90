// What became of what a command writes, said with whatever ends the command.
#pragma once

#include "tool/Card.h"
#include "tool/Output.h"

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

    /// Remembers the card in the field. Throws as SerialNumberOf does.
    void BeginCard(Encoder& encoder);

    /// To be called with the result of the operation that writes the next part. Throws as ThrowIfFailed does.
    void Sent(Encoder& encoder, sceReturnCode result);

    /// Runs what reads the part back. If that fails and another card lies in the field, throws OtherFailure
    /// for that.
    template <class Reading>
    auto ReadBack(Encoder& encoder, Reading read)
    {
        try {
            return read();
        } catch (...) {
            LookForAnotherCard(encoder);
            throw;
        }
    }

    /// The part holds what was to be written, or something else.
    void Found(bool isSame);

    /// Throws OtherFailure if another card than the first lies in the field, and as SerialNumberOf does.
    void RequireSameCard(Encoder& encoder);

    /// Marks every part as written: for a file, which isn't read back.
    void Complete();

private:
    enum class State {
        NotWritten,
        Sent,    ///< without a failure, or with one that leaves it open
        Holds,   ///< read back, perhaps from another card
        Differs, ///< the same, and is something else
        SurelyHolds,
        SurelyDiffers
    };
    struct Part {
        std::string What;
        std::string Look;
        State Now = State::NotWritten;
    };

    [[nodiscard]] std::string InWords(State now) const;
    void LookForAnotherCard(Encoder& encoder);
    void RequireFirst(const std::wstring& now);
    void Tell();

    Output& m_out;
    std::vector<Part> m_parts;
    size_t m_at = 0; ///< the part that is being written
    std::wstring m_first;
    std::wstring m_other; ///< the card in the field, if it is another one
};

} // namespace acg::tool
