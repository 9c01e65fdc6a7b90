#include "session/KeyMask.h"

#include "acg/platform/HexText.h"
#include "acg/platform/TextCase.h"
#include "session/Command.h"

#include <algorithm>
#include <iterator>

namespace session
{

namespace
{

constexpr size_t KeyDigits = 12;
constexpr size_t BlockDigits = 32;

// A trailer, in digits: key A 0 to 11, access bits and user byte 12 to 19, key B 20 to 31.
constexpr Part NoKeyInTrailer = {12, 20};

constexpr Parts Nothing = {};

/// Null for a command that isn't known. The reader may not mind the case.
const KnownCommand* Find(std::string_view name)
{
    const auto* found = std::ranges::find_if(
        KnownCommands, [&](const KnownCommand& known) { return acg::IsSameInAsciiCase(name, known.Name); });
    return found == std::end(KnownCommands) ? nullptr : found;
}

bool AreHexDigits(std::string_view text, size_t count)
{
    return text.size() == count && std::ranges::all_of(text, acg::IsHexDigit);
}

/// Printable, with fewer hexadecimal digits in a row than half a key. Blanks and signs don't end a row.
bool HoldsNoHalfKey(std::string_view text)
{
    size_t row = 0;
    return std::ranges::all_of(text, IsPrintable) && std::ranges::none_of(text, [&row](char character) {
               const char lower = acg::AsciiToLower(character);
               const bool isLetter = lower >= 'a' && lower <= 'z';
               row = acg::IsHexDigit(character) ? row + 1 : isLetter ? 0 : row;
               return row >= KeyDigits / 2;
           });
}

/// The access bits are three digits C1 to C3 and their complements: ~C2 ~C1 C1 ~C3 C3 C2.
bool AreAccessBits(std::string_view text)
{
    const auto areComplements = [text](size_t one, size_t other) {
        return acg::ReadHexDigits(text.substr(one, 1)) + acg::ReadHexDigits(text.substr(other, 1)) == 0xF;
    };
    return areComplements(0, 5) && areComplements(1, 2) && areComplements(3, 4);
}

/// The first 32 sectors have 4 blocks, the others 16; the last block of a sector is its trailer.
bool IsTrailer(std::string_view twoDigits)
{
    constexpr unsigned FirstOfLargeSectors = 128;
    const unsigned block = acg::ReadHexDigits(twoDigits.substr(0, 2));
    const unsigned blocksInSector = block < FirstOfLargeSectors ? 4 : 16;
    return block % blocksInSector == blocksInSector - 1;
}

/// True if the digits of a block number and contents hold access bits, but not where the block has them: then
/// they may be a trailer's, put in the wrong place, and its keys anywhere.
bool IsMisplacedTrailer(std::string_view digits)
{
    constexpr size_t AccessDigits = 6;
    bool isMisplaced = false;
    for (size_t at = 0; at + AccessDigits <= digits.size(); ++at) {
        if (AreAccessBits(digits.substr(at))) {
            if (at == 2 + NoKeyInTrailer.Begin && IsTrailer(digits)) {
                return false;
            }
            isMisplaced = true;
        }
    }
    return isMisplaced;
}

/// Null for a command that isn't known, and for data that isn't what it takes.
const KnownCommand* FindWith(std::string_view command, std::string_view data)
{
    const KnownCommand* const known = Find(command);
    if (known == nullptr || data.size() != 2 * known->DataBytes) {
        return nullptr;
    }
    bool isUnderstood = AreHexDigits(data, data.size());
    if (known->Key == Holds::Login) { // whatever the key is
        const std::string_view keyType = data.substr(2, 2);
        isUnderstood = AreHexDigits(data.substr(0, 2), 2) &&
                       (acg::IsSameInAsciiCase(keyType, "AA") || acg::IsSameInAsciiCase(keyType, "BB"));
    } else if (known->Key == Holds::Block) {
        isUnderstood = isUnderstood && !IsMisplacedTrailer(data);
    }
    return isUnderstood ? known : nullptr;
}

} // namespace

Parts ShownOfCommand(std::string_view command)
{
    return Find(command) != nullptr || HoldsNoHalfKey(command) ? Everything : Nothing;
}

Parts ShownOfData(std::string_view command, std::string_view data)
{
    const KnownCommand* const known = FindWith(command, data);
    if (known == nullptr) {
        return Nothing;
    }
    if (known->Key == Holds::Login) {
        return {Part{0, 4}}; // the sector and the type of the key
    }
    if (known->Key == Holds::Block && IsTrailer(data)) {
        return {Part{0, 2}, {2 + NoKeyInTrailer.Begin, 2 + NoKeyInTrailer.End}};
    }
    return Everything;
}

Part UpToNul(std::string_view text)
{
    return {0, std::min(text.find('\0'), text.size()) + 1};
}

Parts ShownOfReply(std::string_view command, std::string_view data, std::string_view reply)
{
    const KnownCommand* const known = FindWith(command, data);
    const bool isTrailer = known != nullptr && known->Key == Holds::Block && IsTrailer(data);
    const Part upToNul = UpToNul(reply);
    if (known != nullptr && known->Key != Holds::Login && !isTrailer) {
        return {upToNul};
    }
    std::string_view text = reply.substr(0, reply.find('\0'));
    const bool isLetter = text.size() == 1;
    while (text.ends_with('\n') || text.ends_with('\r')) {
        text.remove_suffix(1);
    }
    if (isTrailer && AreHexDigits(text, BlockDigits)) {
        return {NoKeyInTrailer, {BlockDigits, upToNul.End}};
    }
    const bool isShown =
        isTrailer ? HoldsNoHalfKey(text)
                  : std::ranges::all_of(text, IsPrintable) &&
                        std::ranges::count_if(text, acg::IsHexDigit) < static_cast<ptrdiff_t>(KeyDigits);
    if (isLetter || isShown) {
        return {upToNul};
    }
    return {Part{text.size(), upToNul.End}}; // what ends the line
}

} // namespace session
