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
    Holds Key;
    std::string_view Name;
    std::size_t DataBytes; ///< the size of its data text, two hexadecimal digits a byte
    std::chrono::milliseconds CardTime{0};
};

using namespace std::chrono_literals;

inline constexpr KnownCommand KnownCommands[] = {
    {Command::UseIso14443A, Holds::NoKey, "use iso14443a", 0},
    {Command::AntennaOn, Holds::NoKey, "antenna on", 0},
    {Command::AntennaOff, Holds::NoKey, "antenna off", 0},
    // Select, login and a block take 7 ms together; how they share them is a guess.
    {Command::Select, Holds::NoKey, "select", 0, 3ms},
    {Command::Login, Holds::Login, "login", 1 + 1 + 6, 2ms},
    {Command::ReadBlock, Holds::Block, "read block", 1, 2ms},
    {Command::WriteBlock, Holds::Block, "write block", 1 + 16, 2ms},
    // Block, value with its most significant byte first.
    {Command::WriteValueBlock, Holds::NoKey, "write vblock", 1 + 4, 2ms},
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
