// The component's working class.
#pragma once

#if __cplusplus < 202002L
#error "acg needs C++20: compile with -std=c++20, or link acg::acg in CMake"
#endif

#include "acg/encoder/CError.h"
#include "acg/encoder/Enums.h"
#include "acg/reader/ReaderDLL.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace acg
{

class ByteString;
class CommandData;

/// What the four properties that raise throw. Nothing else is thrown to the host, except when memory runs
/// out.
struct RaisedFailure {
    int32_t Number;
    std::wstring Description;
    std::optional<std::wstring> Source; ///< none: the platform's default
};

/// What the component says that it can encode. No operation looks at the kind of card: of an Ultralight card
/// only the serial number can be read, since every access to a block logs in, which such a card doesn't
/// support.
inline constexpr std::wstring_view Capabilities = L"Mifare Classic, Mifare Ultralight";

/// The current time. It need not be the time of day, but must not go backwards.
using Clock = std::function<std::chrono::steady_clock::time_point()>;

/// Reads and writes contactless cards through an ACG Multi-ISO reader.
///
/// The order of calls: Parameters, GetInformation, OpenEncoder with the number from that text, the card
/// operations, CloseEncoder. Destruction closes what is still open. Public members are in the order of the
/// component's interface.
///
/// Every call blocks until the reader library has answered. An Encoder is used by one thread at a time.
/// Operations that return a sceReturnCode report a failure by sceError and the record that LastError returns;
/// they don't throw. Every access to a block selects the card and logs in again.
///
/// A success means that the reader refused nothing. No write is read back, a reply that is too short counts
/// as zeros (LastReplyWasWhole says so), and a card that was swapped between two accesses isn't detected; so
/// a card can be destroyed by calls that succeed. Which ones, and what to do about it: docs/access-levels.md,
/// "Read this first".
///
/// Block and sector numbers aren't tested: what is sent is the low byte, so a number beyond the card may
/// reach another block. WriteSectorTrailer on sector 96 writes the keys of sector 32.
///
/// There is no cache of a card's contents, no retry and no log. A key is passed to the reader and forgotten;
/// it must not be a view into a text that the same call changes.
class Encoder
{
public:
    /// An encoder on the reader library of this process and the system's clock, with the default settings.
    Encoder();
    /// On a reader library and a clock of the caller's own: for tests, or for another library.
    Encoder(ReaderDLL reader, Clock clock);
    ~Encoder();
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    /// The settings, as "Device=com1;Baud rate=9600": entries joined by ";" or, if there is a CR LF
    /// anywhere, by that alone. Keys, in any case of letters: Device, Autodetect (0 disabled, 1 normal, 2
    /// fast; up to 255 is stored), Baud rate, Timeout (signed 32 bits, ms). A call changes only what it
    /// names. An open link keeps the settings that it was opened with.
    ///
    /// Nothing is reported. An unknown or misspelt key is ignored. Device is everything after "=",
    /// blanks and a bare LF included. A number is read as far as it goes: "Timeout=500 ms" stores 500,
    /// "Autodetect=x" 0. One that doesn't fit its field leaves it unchanged.
    void Parameters(std::wstring text);
    /// The settings as five lines; setting them again changes nothing.
    [[nodiscard]] std::wstring Parameters();

    /// The same object at every call. It may outlive the Encoder.
    [[nodiscard]] std::shared_ptr<CError> LastError();

    /// Tries to select a card, and leaves a clean record.
    [[nodiscard]] sceEncoderState EncoderState();

    /// The reader's type, queried at each call. Throws RaisedFailure: -1, or a call failure.
    [[nodiscard]] std::wstring ReaderType();

    // Not supported: each throws RaisedFailure -16.
    [[nodiscard]] std::wstring ATRString();
    [[nodiscard]] sceCardTypes CardType();
    [[nodiscard]] int32_t SerialNumberLength();

    /// Six fields joined by "|": "Tarvello", "ACG Multi-ISO", the version, "1", a number from 0 to 99999 that
    /// OpenEncoder requires, drawn again at each call, and what the component can encode.
    [[nodiscard]] std::wstring GetInformation();

    /// Shows the configuration dialog, in French for "francais" in any case, else in English. sceSuccess: the
    /// user left with OK, and the settings are stored; else sceCanceled. An open link stays as it is.
    sceReturnCode Configure(std::wstring Language);

    /// Opens the link and the first reader on it, and waits up to 5 seconds for a card. If none comes, that
    /// is no failure. Handle: the number of the latest GetInformation. Close before opening again: nothing
    /// else closes an earlier link. Every call, a refused one too, empties the list of value blocks.
    [[nodiscard]] sceReturnCode OpenEncoder(int32_t Handle);
    /// Closes the reader, then the link. Closing a closed encoder succeeds.
    sceReturnCode CloseEncoder();

    /// The serial text of the card in the field, as the reader wrote it; empty on failure.
    [[nodiscard]] sceReturnCode ReadSerialNumber(std::wstring& SerialNumber);

    /// Reads a 16-byte block as 32 hexadecimal digits. A reply that is shorter or longer is filled with "0"
    /// at its end or cut. key: 12 hexadecimal digits, checked only by the reader. BlocNumber counts the
    /// blocks of the whole card; its low byte is sent. After a failure BlocContents is empty, or unchanged
    /// if no card was selected.
    [[nodiscard]] sceReturnCode ReadDataBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                             std::wstring& BlocContents);

    /// Reads block 0: bytes 0 to 3 as one number with byte 0 the highest, byte 4, and bytes 5 to 15 as 22
    /// digits. CheckSum isn't tested. After a failure they are 0, 0 and empty.
    [[nodiscard]] sceReturnCode ReadManufacturerCode(std::wstring_view key, uint8_t KeyType,
                                                     int32_t& SerialNumber, uint8_t& CheckSum,
                                                     std::wstring& ManufacturerInfo);

    /// Reads what a sector's trailer lets its keys do. KeysUsed: 1 if the sector works with key A alone
    /// (key B can be read out), else 2. BX: the user byte, byte 9. What was written doesn't always
    /// read back as the same level: docs/access-levels.md. After a failure the levels are 0, and KeysUsed and
    /// BX unchanged.
    [[nodiscard]] sceReturnCode
    ReadSectorTrailer(int32_t SectorNumber, std::wstring_view key, uint8_t KeyType, uint8_t& KeysUsed,
                      SCBS_SecurityLevelEnum& Security0, SCBS_SecurityLevelEnum& Security1,
                      SCBS_SecurityLevelEnum& Security2, SCSS_SecurityLevelEnum& Conditions, uint8_t& BX);

    /// Writes a 16-byte block, 32 hexadecimal digits in either case, blanks around them allowed. BlocContents
    /// comes back as the reader answered, filled or cut to 32 characters; after a failure it is the text,
    /// upper-cased and trimmed. Any reply but a status letter is a success, an empty one too.
    [[nodiscard]] sceReturnCode WriteDataBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                              std::wstring& BlocContents);

    /// Writes a value block through the reader's own command. The block then counts as a value block until
    /// the encoder is closed, even if the call fails.
    [[nodiscard]] sceReturnCode WriteValueBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                               int32_t value);

    /// Writes both keys of a sector, 12 hexadecimal digits each in either case, and what they may do.
    /// KeysToUse: 1 key A alone, 0 as on the card, any other value both keys. A level of -1 keeps the card's
    /// access bits of that slot, as the trailer is read first: if the reader's reply is too short, that
    /// makes the card block the sector for good. Not every level can be stored: docs/access-levels.md. BX:
    /// the user byte, 0 to 255; the card's stays if it is left out, and any other number
    /// is refused.
    [[nodiscard]] sceReturnCode
    WriteSectorTrailer(int32_t SectorNumber, std::wstring_view key, uint8_t KeyType, std::wstring_view KeyA,
                       std::wstring_view KeyB, uint8_t KeysToUse, SCBS_SecurityLevelEnum Security0,
                       SCBS_SecurityLevelEnum Security1, SCBS_SecurityLevelEnum Security2,
                       SCSS_SecurityLevelEnum Conditions, std::optional<int32_t> BX = std::nullopt);

    /// Changes the bytes FromByte to ToByte of a block, 0 to 15, both included. BlocContents: their digits,
    /// filled with "0" or cut to that length. It comes back as the whole block; after a failure as the
    /// old block, or empty if that couldn't be read. The card is read before the offsets are judged. What
    /// was read is written back: zeros for the rest of the block if the reply was too short, and on a
    /// sector trailer zeros for key A, which the card doesn't show.
    [[nodiscard]] sceReturnCode WriteBytesInBloc(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                                                 uint8_t FromByte, uint8_t ToByte,
                                                 std::wstring& BlocContents);

    /// CloseEncoder, then OpenEncoder with the current number. The outcome is in the record.
    void ReOpenEncoder();

    // For C++ hosts alone:

    /// False if the block that was last read or written with success, by whichever operation, was answered
    /// with data of another length than 32 characters, so that BlocContents is filled with "0" or cut.
    [[nodiscard]] bool LastReplyWasWhole() const { return m_bReplyIsWhole; }

    /// The opened reader, for commands of the host's own through a ReaderDLL; None while the encoder is
    /// closed. Every operation on a card selects it again, and ends such a command's login.
    [[nodiscard]] ReaderHandle OpenedReader() const { return m_hReader; }

private:
    friend struct EncoderInside; // the tests look inside

    // Record keeping: acg/encoder/Encoder.cpp.
    void SetLastError(const Failure& failure, std::wstring_view ComFunction,
                      std::wstring_view RdrCommand = {});
    void ResetLastError(std::wstring_view ComFunction = {});
    void TraceLastError(std::wstring_view FunctionName);
    // How an operation ends that has found a failure itself, and one below which a failure is recorded.
    [[nodiscard]] sceReturnCode Fail(const Failure& failure, std::wstring_view OperationName,
                                     std::wstring_view RdrCommand = {});
    [[nodiscard]] sceReturnCode FailBelow(std::wstring_view OperationName);

    Failure ReadReaderType(std::wstring& type);
    [[noreturn]] void RaiseNotSupported(std::wstring_view property);

    // Opening and closing: acg/encoder/Opening.cpp.
    void DrawHandleNumber();
    Failure OpenFirstReader();
    /// Closes whatever is open, and ignores what fails. Both closing functions are called also with a handle
    /// of 0, which the library accepts; so an encoder that is never opened loads it at its destruction.
    void ReleaseDevice() noexcept;

    // The exchange of one command and the card selection: acg/reader/CommandExchange.cpp.
    Failure Exchange(const char* command, const CommandData& data, ByteString& reply);
    void RecordExchange(const Failure& failure, const char* command);
    Failure EncoderCommand(const char* command, const CommandData& data, ByteString& reply);
    Failure SelectCard(ByteString& serialText);
    Failure SelectCardInRange(Failure* readerTypeFailure = nullptr);

    // Login and block commands: acg/cards/DataBlocks.cpp.
    Failure SectorLogin(int32_t BlocNumber, std::wstring_view key, uint8_t KeyType,
                        std::wstring_view OperationName);
    Failure BlockCommand(const char* command, const CommandData& data, ByteString& reply, int32_t BlocNumber,
                         std::wstring_view key, uint8_t KeyType, std::wstring_view OperationName,
                         bool* isSelected = nullptr);

    // Encoding a level: acg/cards/SectorTrailers.cpp. After a failure nothing was stored.
    Failure SetBlockAccess(int32_t Level, uint8_t KeysToUse, uint8_t Mask, int32_t BlocNumber,
                           ConditionBytes& bytes) const;
    static Failure SetTrailerAccess(int32_t Level, uint8_t KeysToUse, uint8_t Mask, ConditionBytes& bytes);

    ReaderDLL m_oReaderDLL;
    Clock m_oClock;
    std::minstd_rand m_oRandom;

    std::wstring m_sDevice = L"com1";
    uint8_t m_bAutodetect = 1;
    bool m_bReplyIsWhole = true;
    int32_t m_lBaudRate = 9600;
    int32_t m_lTimeout = 2200; ///< milliseconds
    /// The blocks written as value blocks since OpenEncoder was called, duplicates included; empty while the
    /// encoder is closed.
    std::vector<int32_t> m_colValueBlocks;
    int32_t m_lHandleNumber = 0;
    CommHandle m_hComm = CommHandle::None;
    ReaderHandle m_hReader = ReaderHandle::None;
    std::wstring m_sReaderType; ///< in lower case, as of the last successful card selection
    std::shared_ptr<CError> m_oLastError = std::make_shared<CError>();
};

} // namespace acg
