// The reader and the card of one command, with one selection and one login for each sector, whatever is read
// or written there. The class itself selects the card and logs in again for each block.
#pragma once

#include "tool/Card.h"
#include "tool/Failures.h"

#include <memory>
#include <optional>
#include <string>

namespace acg::tool
{

/// Why a block can't be read, if other blocks of the card still can.
enum class Refusal {
    None,
    WrongKey, ///< or no such sector, or a blocked one
    NotGranted
};

/// Another card than the first one lies in the field.
struct AnotherCard : OtherFailure {
    std::string Now; ///< its serial number
};

/// Every operation throws Interruption after Ctrl-C, and selects the card before it logs in on another
/// sector, with another key, or after a refusal. That throws AnotherCard once a card with another serial
/// number lies in the field, and CardFailure if there is none.
class CardSession
{
public:
    /// Opens the reader with the settings of MakeEncoder.
    explicit CardSession(const ReaderOptions& reader, CardWait wait = CardWait::FiveSeconds);
    /// Of an encoder that is open, and the library that it uses.
    CardSession(std::shared_ptr<Encoder> opened, ReaderDLL library);

    /// For operations of the class, which select the card and log in by themselves.
    [[nodiscard]] Encoder& Class();

    /// Of the first card. Throws OtherFailure if the reader's reply has none.
    [[nodiscard]] const std::string& SerialNumber();

    /// Selects the card, which ends the login.
    void Select();
    /// The next card that is selected counts as the first one.
    void ForgetCard() { m_serial.reset(); }

    /// WrongKey or None. Throws if the failure concerns more than this sector and key.
    [[nodiscard]] Refusal TryLogIn(int32_t sector, const LoginKey& key);

    /// Throws OtherFailure if the reader's reply isn't a whole block in hexadecimal.
    [[nodiscard]] Block ReadBlock(int32_t number, const LoginKey& key);
    /// contents is changed only for Refusal::None. Throws like ReadBlock if the failure concerns more than
    /// this block: if the card has left, for example.
    [[nodiscard]] Refusal TryReadBlock(int32_t number, const LoginKey& key, Block& contents);
    /// What TryLogIn or TryReadBlock was refused with.
    [[nodiscard]] const CError& LastRefusal() const { return m_refused; }

    /// Writes any block, a trailer too; none has been sent if this throws. The failure of the writing itself
    /// is returned: the block may be written nonetheless.
    [[nodiscard]] std::optional<CError> WriteBlock(int32_t number, const LoginKey& key,
                                                   const Block& contents);

private:
    struct Login {
        int32_t Sector;
        LoginKey Key;
    };

    void LogIn(int32_t sector, const LoginKey& key);
    [[nodiscard]] std::optional<CError> Send(const char* command, const CommandData& data, ByteString& reply);

    std::shared_ptr<Encoder> m_encoder;
    ReaderDLL m_library;
    std::wstring m_readerType; ///< in lower case
    std::optional<std::string> m_serial;
    bool m_isSelected = false;    ///< and no login has been sent since
    std::optional<Login> m_login; ///< none after a refusal
    CError m_refused;
};

} // namespace acg::tool
