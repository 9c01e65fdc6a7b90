// The text that names a device says what the simulated reader is to be.
#pragma once

#include "session/Command.h"
#include "simulator/Card.h"

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace simulator
{

using namespace session; // the reader's commands and status letters

/// A command that is answered instead of carried out.
struct Fault {
    Command Answered;
    unsigned Occurrence; ///< counts such commands since the reader was opened, from 1
    std::string Reply;   ///< a status reply or empty
};

/// The card that is to lie in the field. An option that wasn't given is empty.
struct CardOptions {
    std::optional<std::size_t> BlockCount; ///< 0 for an empty field
    std::optional<SerialNumber> Number;
    std::string ImagePath;
    std::string SavePath;
    bool IsInFolder = false; ///< both paths are those of cards=
};

/// A card is placed in the field instead of the former, or the card leaves it, or the one that left comes
/// back.
struct FieldChange {
    enum class Kind {
        Place,
        Remove,
        Return
    };
    Kind What = Kind::Place;
    CardOptions Card; ///< empty unless a card is placed
};

struct Device {
    std::string ReaderType = "MultiISO 2.1";
    std::vector<uint8_t> ReaderIds = {0x41};
    std::vector<Fault> Faults;
    std::map<unsigned, FieldChange> FieldChanges; ///< by the commands since the reader was opened
    std::optional<unsigned> BaudRate;             ///< of a line on which time passes
    CardOptions Card;
    std::string Folder;            ///< of all cards' images, named by serial number; empty for none
    std::vector<CardOptions> Feed; ///< the next card comes when the host only selects
    std::string ReplayPath;        ///< of the log that is to answer; empty for a simulated card
};

/// Why a device can't be opened: what is wrong with the option, given as in the device text.
[[nodiscard]] std::runtime_error Refusal(std::string_view option, std::string_view reason);

/// Reads a name and the options after it, separated by commas; of an option that is given twice the last
/// counts, but every fault and every change of the field does. Throws a Refusal if an option or a value is
/// unknown, or options contradict each other.
[[nodiscard]] Device ParseDeviceText(std::string_view text);

} // namespace simulator
