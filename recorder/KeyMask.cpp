#include "recorder/KeyMask.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace recorder
{

namespace
{

constexpr size_t KeyDigits = 12;
constexpr size_t BlockDigits = 32;

// A trailer, in digits: key A 0 to 11, access bits and user byte 12 to 19, key B 20 to 31.
constexpr Part NoKeyInTrailer = {12, 20};

constexpr Part FirstByte = {0, 2}; // the block, or the sector of a login
constexpr Parts Nothing = {};

enum class Holds {
    NoKey,
    Login, // sector, AA or BB, key
    Block  // block number, contents if there are any; the reply is the block
};

struct KnownCommand {
    std::string_view Name;
    size_t DataDigits;
    Holds Kind;
};

constexpr KnownCommand KnownCommands[] = {
    {"use iso14443a", 0, Holds::NoKey}, {"antenna on", 0, Holds::NoKey},
    {"antenna off", 0, Holds::NoKey},   {"select", 0, Holds::NoKey},
    {"write vblock", 10, Holds::NoKey}, {"login", 4 + KeyDigits, Holds::Login},
    {"read block", 2, Holds::Block},    {"write block", 2 + BlockDigits, Holds::Block},
};

constexpr char ToLower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Null for a command that isn't known. The reader may not mind the case.
const KnownCommand* Find(std::string_view name)
{
    const auto* found = std::ranges::find_if(KnownCommands, [&](const KnownCommand& known) {
        return std::ranges::equal(name, known.Name, {}, ToLower);
    });
    return found == std::end(KnownCommands) ? nullptr : found;
}

bool IsHexDigit(char character)
{
    const char lower = ToLower(character);
    return (lower >= '0' && lower <= '9') || (lower >= 'a' && lower <= 'f');
}

bool AreHexDigits(std::string_view text, size_t count)
{
    return text.size() == count && std::ranges::all_of(text, IsHexDigit);
}

/// The first 32 sectors have 4 blocks, the others 16; the last block of a sector is its trailer.
bool IsTrailer(std::string_view twoDigits)
{
    constexpr unsigned FirstOfLargeSectors = 128;
    unsigned block = 0;
    std::from_chars(twoDigits.data(), twoDigits.data() + 2, block, /*base=*/16);
    const unsigned blocksInSector = block < FirstOfLargeSectors ? 4 : 16;
    return block % blocksInSector == blocksInSector - 1;
}

} // namespace

Parts ShownOfCommand(std::string_view Command)
{
    const auto digits = static_cast<size_t>(std::ranges::count_if(Command, IsHexDigit));
    return Find(Command) != nullptr || digits < KeyDigits ? Everything : Nothing;
}

Parts ShownOfData(std::string_view Command, std::string_view Data)
{
    const KnownCommand* const known = Find(Command);
    if (known == nullptr || known->DataDigits == 0) {
        return Nothing;
    }
    if (known->Kind == Holds::Login) {
        const std::string_view start = Data.substr(0, 4);
        const bool hasKeyType = AreHexDigits(start, 4) && ToLower(start[2]) == ToLower(start[3]) &&
                                (ToLower(start[2]) == 'a' || ToLower(start[2]) == 'b');
        return {hasKeyType ? Part{0, 4} : FirstByte};
    }
    if (!AreHexDigits(Data, known->DataDigits)) {
        return {FirstByte};
    }
    if (known->Kind == Holds::Block && IsTrailer(Data)) {
        return {FirstByte, {2 + NoKeyInTrailer.Begin, 2 + NoKeyInTrailer.End}};
    }
    return Everything;
}

Part UpToNul(std::string_view Text)
{
    return {0, std::min(Text.find('\0'), Text.size()) + 1};
}

Parts ShownOfReply(std::string_view Command, std::string_view Data, std::string_view Reply)
{
    constexpr Part StatusLetter = {0, 2}; // and the NUL that makes it one
    const KnownCommand* const known = Find(Command);
    const bool isUnderstood =
        known != nullptr && known->Kind != Holds::Login && AreHexDigits(Data, known->DataDigits);
    const bool isTrailer = isUnderstood && known->DataDigits != 0 && IsTrailer(Data);
    if (isUnderstood && !isTrailer) {
        return {UpToNul(Reply)};
    }
    const size_t firstNul = Reply.find('\0');
    if (firstNul == 1) {
        return {StatusLetter};
    }
    if (isTrailer && AreHexDigits(Reply.substr(0, firstNul), BlockDigits)) {
        return {NoKeyInTrailer, {BlockDigits, BlockDigits + 1}};
    }
    return Nothing;
}

} // namespace recorder
