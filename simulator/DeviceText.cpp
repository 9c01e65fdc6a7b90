#include "simulator/DeviceText.h"

#include "simulator/Hex.h"

#include <algorithm>
#include <charconv>

namespace simulator
{

namespace
{

std::optional<unsigned> ParseNumber(std::string_view text)
{
    unsigned number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// Cuts the text before the separator off and gives it; the whole text where there is none.
std::string_view CutOff(std::string_view& text, char separator)
{
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view head = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return head;
}

bool TakeCard(std::string_view value, Device& device)
{
    if (value == "1k") {
        device.Card.BlockCount = BlocksOf1K;
    } else if (value == "4k") {
        device.Card.BlockCount = BlocksOf4K;
    } else if (value == "none") {
        device.Card.BlockCount = 0;
    } else {
        return false;
    }
    return true;
}

bool TakeSerialNumber(std::string_view value, Device& device)
{
    const auto bytes = FromHex(value);
    if (!bytes || bytes->size() != sizeof(SerialNumber)) {
        return false;
    }
    std::ranges::copy(*bytes, device.Card.Number.emplace().begin());
    return true;
}

/// 0 is no id: it would end the list of those that detection finds.
bool TakeReaderIds(std::string_view value, Device& device)
{
    const auto ids = FromHex(value);
    if (!ids || std::ranges::count(*ids, 0) != 0) {
        return false;
    }
    device.ReaderIds = *ids;
    return true;
}

bool TakeFault(std::string_view value, Device& device)
{
    if (std::ranges::count(value, '/') != 2) {
        return false;
    }
    const CommandText* const command = FindCommand(CutOff(value, '/'));
    const unsigned occurrence = ParseNumber(CutOff(value, '/')).value_or(0);
    const std::string_view letter = value;
    if (command == nullptr || occurrence == 0 || letter.size() > 1 ||
        StatusLetters.find(letter) == std::string_view::npos) {
        return false;
    }
    device.Faults.push_back(
        {command->Meaning, occurrence, letter.empty() ? "" : StatusReply(letter.front())});
    return true;
}

/// False for an option or a value that is unknown.
bool TakeOption(std::string_view name, std::string_view value, Device& device)
{
    if (name == "card") {
        return TakeCard(value, device);
    }
    if (name == "uid") {
        return TakeSerialNumber(value, device);
    }
    if (name == "image") {
        device.Card.ImagePath = value;
        return !value.empty();
    }
    if (name == "reader") {
        device.ReaderType = value;
        return true;
    }
    if (name == "readers") {
        return TakeReaderIds(value, device);
    }
    if (name == "fault") {
        return TakeFault(value, device);
    }
    if (name == "remove") {
        device.RemoveAfter = ParseNumber(value);
        return device.RemoveAfter.has_value();
    }
    return false;
}

} // namespace

std::optional<Device> ParseDeviceText(std::string_view Text)
{
    Device device;
    CutOff(Text, ','); // the name is the host's affair: every name is a device that is there
    while (!Text.empty()) {
        std::string_view value = CutOff(Text, ',');
        const bool hasValue = value.find('=') != std::string_view::npos;
        const std::string_view name = CutOff(value, '=');
        if (!hasValue || !TakeOption(name, value, device)) {
            return std::nullopt;
        }
    }
    return device;
}

} // namespace simulator
