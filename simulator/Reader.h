// One opened reader: it takes commands and passes them on to the card in its field.
#pragma once

#include "simulator/CardBox.h"
#include "simulator/DeviceText.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace simulator
{

/// Commands and replies are texts. A reply is data, or a status letter followed by a NUL.
///
/// The order of a session is: ISO 14443 A and the antenna on, select, login on a sector, then reads and
/// writes in that sector. A select ends the login. A card that refuses, be it a key or an access, falls
/// back to idle and has to be selected again; a command that the reader itself refuses changes nothing.
class Reader
{
public:
    /// inField is null for an empty field. It and the box, from which further cards are placed, must outlive
    /// the reader, and other readers may use them too.
    Reader(Device device, CardBox& cards, Card* inField);

    [[nodiscard]] const std::string& Type() const { return m_device.ReaderType; }

    [[nodiscard]] std::string Send(std::string_view commandName, std::string_view data);

    /// How long that exchange takes on the device's line; nothing if it has no speed.
    [[nodiscard]] std::chrono::microseconds TimeOf(std::string_view commandName, std::string_view data,
                                                   std::string_view reply) const;

private:
    struct Session {
        std::size_t Sector;
        KeyType Type;
    };

    void ChangeField();
    void Place(const CardOptions& card);
    void Feed();
    [[nodiscard]] std::optional<std::string> PlannedReply(Command sent);
    [[nodiscard]] std::string Run(Command sent, std::span<const uint8_t> data);
    [[nodiscard]] std::string Select();
    [[nodiscard]] std::string LogIn(std::span<const uint8_t> data);
    [[nodiscard]] std::string AccessBlock(Command sent, std::span<const uint8_t> data);
    [[nodiscard]] bool CardAnswers() const;
    void EndSelection();

    Device m_device; ///< what is counted in it counts down
    CardBox* m_cards;
    Card* m_card;
    Card* m_removed = nullptr;                    ///< the last card that has left the field
    std::map<const Card*, CardOptions> m_options; ///< of the cards that have been in the field
    unsigned m_commands = 0;                      ///< since the reader was opened
    std::size_t m_fed = 0;                        ///< the next card of the feed
    unsigned m_selects = 0; ///< since the last login, or the last change of the field by the feed
    bool m_iso14443A = false;
    bool m_antennaOn = false;
    bool m_selected = false;
    std::optional<Session> m_login;
};

} // namespace simulator
