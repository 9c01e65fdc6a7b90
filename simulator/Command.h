// The language of the reader: its commands, and the letters that it answers in place of data.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace simulator
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

struct CommandText {
    Command Meaning;
    std::string_view Name;
    std::size_t DataBytes; ///< the size of its data text, two hexadecimal digits a byte
    std::chrono::milliseconds CardTime{0};
};

using namespace std::chrono_literals;

inline constexpr CommandText CommandTexts[] = {
    {Command::UseIso14443A, "use iso14443a", 0},
    {Command::AntennaOn, "antenna on", 0},
    {Command::AntennaOff, "antenna off", 0},
    // Select, login and a block take 7 ms together; how they share them is a guess.
    {Command::Select, "select", 0, 3ms},
    {Command::Login, "login", 1 + 1 + 6, 2ms},         // login sector, AA or BB for the key type, key
    {Command::ReadBlock, "read block", 1, 2ms},        // block
    {Command::WriteBlock, "write block", 1 + 16, 2ms}, // block, contents
    {Command::WriteValueBlock, "write vblock", 1 + 4,
     2ms} // block, value with its most significant byte first
};

/// Null if the reader has no such command.
[[nodiscard]] constexpr const CommandText* FindCommand(std::string_view name)
{
    const auto* found = std::ranges::find(CommandTexts, name, &CommandText::Name);
    return found == std::end(CommandTexts) ? nullptr : found;
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

} // namespace simulator
