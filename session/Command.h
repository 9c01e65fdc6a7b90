// The language of the reader: its commands, and the letters that it answers in place of data.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace session
{

enum class Command {
    UseIso14443A,
    AntennaOn,
    AntennaOff,
    Select,
    Login,
    ReadBlock,
    WriteBlock,
    WriteValueBlock
};

/// Where a command has a key, in its data or in the reply.
enum class Holds {
    NoKey,
    Login, ///< the data: login sector, AA or BB for the key type, key
    Block  ///< the data: block, and contents if there are any; the reply is the block
};

struct KnownCommand {
    Command Meaning;
    std::string_view Name;
    std::size_t DataBytes; ///< the size of its data text, two hexadecimal digits a byte
    Holds Key;
    std::chrono::milliseconds CardTime{0};
};

using namespace std::chrono_literals;

inline constexpr KnownCommand KnownCommands[] = {
    {Command::UseIso14443A, "use iso14443a", 0, Holds::NoKey},
    {Command::AntennaOn, "antenna on", 0, Holds::NoKey},
    {Command::AntennaOff, "antenna off", 0, Holds::NoKey},
    // Select, login and a block take 7 ms together; how they share them is a guess.
    {Command::Select, "select", 0, Holds::NoKey, 3ms},
    {Command::Login, "login", 1 + 1 + 6, Holds::Login, 2ms},
    {Command::ReadBlock, "read block", 1, Holds::Block, 2ms},
    {Command::WriteBlock, "write block", 1 + 16, Holds::Block, 2ms},
    // Block, value with its most significant byte first.
    {Command::WriteValueBlock, "write vblock", 1 + 4, Holds::NoKey, 2ms},
};

/// Null if the reader has no such command.
[[nodiscard]] constexpr const KnownCommand* FindCommand(std::string_view name)
{
    const auto* found = std::ranges::find(KnownCommands, name, &KnownCommand::Name);
    return found == std::end(KnownCommands) ? nullptr : found;
}

inline constexpr char StatusLoggedIn = 'L';
inline constexpr char StatusNoCard = 'N';
inline constexpr char StatusAuthenticationFailed = 'X';
inline constexpr char StatusCardRefused = 'F';
inline constexpr char StatusOutOfOrder = 'O';
inline constexpr char StatusOutOfRange = 'R';
inline constexpr char StatusUnknownCommand = '?';
/// With them "I", not a value block, and "C", a collision, which only a planned fault brings about.
inline constexpr std::string_view StatusLetters = "LNXFOR?IC";

/// A reply of one letter is told from data by the NUL that follows it. Replies of data carry none.
[[nodiscard]] inline std::string StatusReply(char letter)
{
    return {letter, '\0'};
}

} // namespace session
