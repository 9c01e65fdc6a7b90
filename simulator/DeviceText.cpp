#include "simulator/DeviceText.h"

#include "acg/platform/HexText.h"

#include <algorithm>
#include <charconv>

namespace simulator
{

namespace
{

std::optional<unsigned> ParseNumber(std::string_view text)
{
    unsigned number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && stop == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

/// Cuts off and returns the text before the separator, or the whole text if there is none.
std::string_view CutOff(std::string_view& text, char separator)
{
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view head = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return head;
}

bool ParseCard(std::string_view value, Device& device)
{
    device.Card.BlockCount = value == "1k" ? BlocksOf1K : value == "4k" ? BlocksOf4K : 0;
    return device.Card.BlockCount != 0U || value == "none";
}

template <std::string CardOptions::*path>
bool ParseCardPath(std::string_view value, Device& device)
{
    device.Card.*path = value;
    return !value.empty();
}

template <std::string Device::*path>
bool ParsePath(std::string_view value, Device& device)
{
    device.*path = value;
    return !value.empty();
}

bool ParseSerialNumber(std::string_view value, Device& device)
{
    const auto bytes = acg::FromHex(value);
    if (!bytes || bytes->size() != sizeof(SerialNumber)) {
        return false;
    }
    std::ranges::copy(*bytes, device.Card.Number.emplace().begin());
    return true;
}

/// 0 is no id: it would end the list of those that detection finds.
bool ParseReaderIds(std::string_view value, Device& device)
{
    const auto ids = acg::FromHex(value);
    if (!ids || std::ranges::count(*ids, 0) != 0) {
        return false;
    }
    device.ReaderIds = *ids;
    return true;
}

bool ParseFault(std::string_view value, Device& device)
{
    if (std::ranges::count(value, '/') != 2) {
        return false;
    }
    const KnownCommand* const command = FindCommand(CutOff(value, '/'));
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

bool AddChange(std::string_view number, const FieldChange& change, Device& device)
{
    const std::optional<unsigned> after = ParseNumber(number);
    return after && device.FieldChanges.try_emplace(*after, change).second;
}

template <FieldChange::Kind kind>
bool ParseChange(std::string_view value, Device& device)
{
    return AddChange(value, {kind}, device);
}

/// UID or UID/4k.
std::optional<CardOptions> ParseOtherCard(std::string_view value)
{
    Device other;
    const bool isNumber = ParseSerialNumber(CutOff(value, '/'), other);
    other.Card.BlockCount = value.empty() ? BlocksOf1K : BlocksOf4K;
    return isNumber && (value.empty() || value == "4k") ? std::optional(other.Card) : std::nullopt;
}

bool ParsePlace(std::string_view value, Device& device)
{
    const std::string_view number = CutOff(value, '/');
    const std::optional<CardOptions> placed = ParseOtherCard(value);
    return placed && AddChange(number, {FieldChange::Kind::Place, *placed}, device);
}

bool ParseFeed(std::string_view value, Device& device)
{
    constexpr unsigned MaxCards = 1000;
    const unsigned count = ParseNumber(CutOff(value, '/')).value_or(0);
    std::optional<CardOptions> card = ParseOtherCard(value);
    if (!card || count == 0 || count > MaxCards) {
        return false;
    }
    for (unsigned fed = 0; fed < count; ++fed) {
        device.Feed.push_back(*card);
        auto digit = card->Number->rbegin(); // the number counts up, its last byte first
        while (digit != card->Number->rend() && ++*digit == 0) {
            ++digit;
        }
    }
    return true;
}

struct Option {
    std::string_view Name;
    std::string_view Expected;                             ///< the values that it takes
    bool (*Parse)(std::string_view value, Device& device); ///< false if the value isn't one of them
};

constexpr Option Options[] = {
    {"card", "1k, 4k or none", ParseCard},
    {"uid", "8 hexadecimal digits", ParseSerialNumber},
    {"image", "the path of a file", ParseCardPath<&CardOptions::ImagePath>},
    {"save", "the path of a file", ParseCardPath<&CardOptions::SavePath>},
    {"reader", "a text",
     [](std::string_view value, Device& device) {
         device.ReaderType = value;
         return true;
     }},
    {"readers", "two hexadecimal digits for each reader, not 00", ParseReaderIds},
    {"fault", "COMMAND/N/LETTER, with N from 1 and one of the letters LNXFOR?IC or none", ParseFault},
    {"place", "N/UID or N/UID/4k, with no other change of the field after N commands", ParsePlace},
    {"remove", "a number of commands, with no other change of the field after as many",
     ParseChange<FieldChange::Kind::Remove>},
    {"return", "a number of commands, with no other change of the field after as many",
     ParseChange<FieldChange::Kind::Return>},
    {"baud", "a speed in baud, from 1",
     [](std::string_view value, Device& device) {
         device.BaudRate = ParseNumber(value);
         return device.BaudRate.value_or(0) != 0;
     }},
    {"cards", "the path of a folder", ParsePath<&Device::Folder>},
    {"feed", "N/UID or N/UID/4k, with N from 1 to 1000", ParseFeed},
    {"replay", "the path of a file", ParsePath<&Device::ReplayPath>},
};

/// Two options had other names formerly, which are still taken.
std::string_view PresentName(std::string_view name)
{
    return name == "lay" ? "place" : name == "line" ? "baud" : name;
}

std::string NamesOfOptions()
{
    std::string names;
    for (const Option& option : Options) {
        names += (names.empty() ? "" : ", ") + std::string(option.Name) + '=';
    }
    return names;
}

void RefuseContradictions(const Device& device)
{
    if (device.Card.BlockCount == 0U && !device.Card.SavePath.empty()) {
        throw Refusal("save=" + device.Card.SavePath, "with card=none there is no card to save");
    }
    if (!device.Folder.empty() && (!device.Card.ImagePath.empty() || !device.Card.SavePath.empty())) {
        throw Refusal("cards=" + device.Folder, "expected neither image= nor save= beside it");
    }
    bool hasLeft = false;
    for (const auto& [after, change] : device.FieldChanges) {
        if (change.What == FieldChange::Kind::Return && !hasLeft) {
            throw Refusal("return=" + std::to_string(after), "no card has left by remove= before");
        }
        hasLeft =
            change.What == FieldChange::Kind::Remove || (hasLeft && change.What == FieldChange::Kind::Place);
    }
}

} // namespace

std::runtime_error Refusal(std::string_view option, std::string_view reason)
{
    return std::runtime_error("option \"" + std::string(option) + "\": " + std::string(reason));
}

Device ParseDeviceText(std::string_view text)
{
    Device device;
    CutOff(text, ','); // the name is the host's affair: every name is a device that is there
    const bool isOne = text.find(',') == std::string_view::npos;
    while (!text.empty()) {
        const std::string_view option = CutOff(text, ',');
        std::string_view value = option;
        const std::string_view name = CutOff(value, '=');
        const auto* const known = std::ranges::find(Options, PresentName(name), &Option::Name);
        if (known == std::end(Options) || name == option) {
            throw Refusal(option, "expected one of " + NamesOfOptions());
        }
        if (!known->Parse(value, device)) {
            throw Refusal(option, "expected " + std::string(known->Expected));
        }
        if (!device.ReplayPath.empty() && !isOne) {
            throw Refusal(option, "expected no other option beside replay=");
        }
    }
    RefuseContradictions(device);
    return device;
}

} // namespace simulator
