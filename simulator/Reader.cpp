#include "simulator/Reader.h"

#include "abi/ReaderLibrary.h"
#include "acg/platform/AnsiText.h"
#include "acg/platform/HexText.h"
#include "acg/platform/TextCase.h"

#include <algorithm>
#include <filesystem>
#include <ratio>
#include <system_error>
#include <utility>

namespace simulator
{

namespace
{

// The reader takes the first block of a sector divided by this for the sector to log in to.
constexpr std::size_t BlocksOfLoginSector = 4;

constexpr uint8_t KeyAByte = 0xAA;
constexpr uint8_t KeyBByte = 0xBB;

/// A reader of this type answers a good login with nothing at all.
constexpr std::string_view SilentType = "MultiISO 1.0";

/// How the card keeps a counter: the value three times, least significant byte first and the second time
/// inverted, then the block's address four times, the second and the fourth time inverted. Section 8.6.2.1,
/// value blocks, of the data sheet that Card.h names.
Block ValueBlock(std::span<const uint8_t> value, uint8_t address)
{
    Block block = {};
    for (std::size_t i = 0; i < 4; ++i) {
        block[i] = block[i + 8] = value[3 - i];
        block[i + 4] = static_cast<uint8_t>(~block[i]);
        block[i + 12] = i % 2 == 0 ? address : static_cast<uint8_t>(~address);
    }
    return block;
}

} // namespace

Reader::Reader(Device device, CardBox& cards, Card* inField)
    : m_device(std::move(device)), m_cards(&cards), m_card(inField)
{
    m_options[inField] = InFolder(m_device.Card, m_device.Folder);
    // A feed goes on from the last card that was in the field of some process.
    for (std::size_t card = 0; card < m_device.Feed.size(); ++card) {
        const std::string image = InFolder(m_device.Feed[card], m_device.Folder).ImagePath;
        std::error_code unreadable;
        m_fed = std::filesystem::exists(acg::PathFromAnsi(image), unreadable) ? card : m_fed;
    }
}

std::string Reader::Send(std::string_view commandName, std::string_view data)
{
    ChangeField();
    const KnownCommand* const command = FindCommand(commandName);
    if (command == nullptr) {
        return StatusReply(StatusUnknownCommand);
    }
    if (std::optional<std::string> planned = PlannedReply(command->Meaning)) {
        EndSelection();
        return *std::move(planned);
    }
    const auto bytes = acg::FromHex(data);
    if (!bytes || bytes->size() != command->DataBytes) {
        return StatusReply(StatusUnknownCommand);
    }
    return Run(command->Meaning, *bytes);
}

std::chrono::microseconds Reader::TimeOf(std::string_view commandName, std::string_view data,
                                         std::string_view reply) const
{
    if (!m_device.BaudRate) {
        return {};
    }
    constexpr uint64_t BitsOfByte = 10; // with the start bit and the stop bit
    const uint64_t bits = (commandName.size() + data.size() + reply.size()) * BitsOfByte;
    const KnownCommand* const command = FindCommand(commandName);
    return std::chrono::microseconds(bits * std::micro::den / *m_device.BaudRate) +
           (command != nullptr ? command->CardTime : std::chrono::milliseconds());
}

/// The card that was selected no longer is, whatever comes into the field.
void Reader::ChangeField()
{
    const auto change = m_device.FieldChanges.find(m_commands++);
    if (change == m_device.FieldChanges.end()) {
        return;
    }
    EndSelection();
    switch (change->second.What) {
    case FieldChange::Kind::Place:
        Place(change->second.Card);
        break;
    case FieldChange::Kind::Remove:
        m_removed = m_card != nullptr ? m_card : m_removed;
        m_card = nullptr;
        break;
    case FieldChange::Kind::Return:
        m_card = m_removed;
        break;
    }
}

void Reader::Place(const CardOptions& card)
{
    const CardOptions placed = InFolder(card, m_device.Folder);
    try {
        m_card = m_cards->Place(placed);
        m_options.try_emplace(m_card, placed);
    } catch (const std::runtime_error& reason) { // no card rather than another one
        m_card = nullptr;
        acgreader::Report(std::string("SendCommandGetData: ") + reason.what());
    }
}

/// At a select: a host that has only selected since the field changed has seen it.
void Reader::Feed()
{
    constexpr unsigned SelectsOfCard = 5; // more than precede a login
    constexpr unsigned SelectsOfEmptyField = 2;
    if (m_device.Feed.empty() || ++m_selects <= (m_card != nullptr ? SelectsOfCard : SelectsOfEmptyField)) {
        return;
    }
    m_selects = 1;
    if (m_card != nullptr) {
        m_card = nullptr;
    } else if (m_fed < m_device.Feed.size()) {
        Place(m_device.Feed[m_fed++]);
    }
}

std::optional<std::string> Reader::PlannedReply(Command sent)
{
    std::optional<std::string> planned;
    for (Fault& fault : m_device.Faults) {
        if (fault.Answered == sent && --fault.Occurrence == 0) {
            planned = fault.Reply;
        }
    }
    return planned;
}

std::string Reader::Run(Command sent, std::span<const uint8_t> data)
{
    switch (sent) {
    case Command::UseIso14443A:
        m_iso14443A = true;
        return "";
    case Command::AntennaOn:
        m_antennaOn = true;
        return "";
    case Command::AntennaOff:
        m_antennaOn = false;
        EndSelection();
        return "";
    case Command::Select:
        return Select();
    default:
        break;
    }
    if (!CardAnswers()) {
        return StatusReply(StatusNoCard);
    }
    if (!m_selected) {
        return StatusReply(StatusOutOfOrder);
    }
    return sent == Command::Login ? LogIn(data) : AccessBlock(sent, data);
}

std::string Reader::Select()
{
    EndSelection();
    Feed();
    if (!CardAnswers()) {
        return StatusReply(StatusNoCard);
    }
    m_selected = true;
    return acg::ToHex(m_card->GetSerialNumber());
}

std::string Reader::LogIn(std::span<const uint8_t> data)
{
    m_selects = 0;
    const std::size_t firstBlock = data[0] * BlocksOfLoginSector;
    const std::size_t sector = SectorOf(firstBlock);
    if (firstBlock >= m_card->BlockCount() || firstBlock != FirstBlockOf(sector)) {
        return StatusReply(StatusOutOfRange);
    }
    if (data[1] != KeyAByte && data[1] != KeyBByte) {
        return StatusReply(StatusUnknownCommand);
    }
    const KeyType type = data[1] == KeyAByte ? KeyType::A : KeyType::B;
    if (!m_card->Login(sector, type, data.subspan<2, KeySize>())) {
        EndSelection();
        return StatusReply(StatusAuthenticationFailed);
    }
    m_login = {sector, type};
    return acg::IsSameInAsciiCase(m_device.ReaderType, SilentType) ? "" : StatusReply(StatusLoggedIn);
}

std::string Reader::AccessBlock(Command sent, std::span<const uint8_t> data)
{
    const std::size_t block = data[0];
    if (block >= m_card->BlockCount()) {
        return StatusReply(StatusOutOfRange);
    }
    if (!m_login || m_login->Sector != SectorOf(block)) {
        return StatusReply(StatusOutOfOrder);
    }
    const std::span<const uint8_t> contents = data.subspan(1);
    std::optional<Block> reply;
    if (sent == Command::ReadBlock) {
        reply = m_card->Read(block, m_login->Type);
    } else if (sent == Command::WriteBlock) {
        Block written = {};
        std::ranges::copy(contents, written.begin());
        reply = m_card->Write(block, m_login->Type, written);
    } else if (!IsTrailer(block)) {
        reply = m_card->Write(block, m_login->Type, ValueBlock(contents, data[0]));
    }
    if (!reply) {
        EndSelection();
        return StatusReply(StatusCardRefused);
    }
    if (const CardOptions& options = m_options[m_card];
        sent != Command::ReadBlock && !options.SavePath.empty()) {
        try {
            SaveImage(*m_card, options);
        } catch (const std::runtime_error& reason) { // the card has changed all the same
            acgreader::Report(std::string("SendCommandGetData: ") + reason.what());
        }
    }
    return acg::ToHex(sent == Command::WriteValueBlock ? contents : *reply);
}

bool Reader::CardAnswers() const
{
    return m_card != nullptr && m_antennaOn && m_iso14443A;
}

void Reader::EndSelection()
{
    m_selected = false;
    m_login.reset();
}

} // namespace simulator
