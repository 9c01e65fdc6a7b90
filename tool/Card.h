// Keys, blocks and trailers, and the encoder of one command.
#pragma once

#include "acg/cards/AccessBits.h"
#include "acg/cards/TrailerLayout.h"
#include "acg/encoder/Encoder.h"
#include "acg/platform/Secret.h"
#include "tool/System.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace acg::tool
{

/// A key; its memory is wiped before it is released.
struct Key : std::array<uint8_t, KeySize> {
    Key() : array{} {}
    Key(const Key&) = default;
    Key& operator=(const Key&) = default;
    ~Key() { Wipe(data(), size()); }

    /// As a card shows a key that can't be read.
    [[nodiscard]] bool IsZeros() const
    {
        return std::ranges::all_of(*this, [](uint8_t byte) { return byte == 0; });
    }
};

/// As an encoder takes it: 12 hexadecimal digits.
[[nodiscard]] Secret<wchar_t> DigitsOf(const Key& key);

/// A key to log in with.
struct LoginKey {
    Key Bytes;
    uint8_t Type = KeyTypeA;

    [[nodiscard]] bool IsB() const { return Type == KeyTypeB; }
    [[nodiscard]] KeySet AsKeySet() const { return IsB() ? KeySet::B : KeySet::A; }
    /// What follows --key in a command that logs in with it.
    [[nodiscard]] const char* Option() const { return IsB() ? " --as-b" : ""; }

    bool operator==(const LoginKey&) const = default;
};

inline constexpr int32_t LastBlock = 255; ///< of a 4K card
inline constexpr int32_t LastSector = 39;

using Block = std::array<uint8_t, 16>;

/// A sector's trailer.
struct Trailer {
    explicit Trailer(const Block& block);

    Key KeyA; ///< zeros as it is read, since the card doesn't show it
    ConditionBytes Conditions = {};
    uint8_t UserByte; ///< byte 9, or BX
    Key KeyB;         ///< zeros if it is a key
};

/// Whether opening waits for a card: for 5 seconds, with the processor busy, or not at all.
enum class CardWait {
    FiveSeconds,
    None
};

/// The options that say which reader a command uses.
struct ReaderOptions {
    std::string Parameters;   ///< --reader
    bool IsSimulated = false; ///< --simulate
};

/// The look-up in the reader library of the process, or in the simulated one. Throws OtherFailure if there is
/// no simulated one where a build, the package or an installation has it.
[[nodiscard]] EntryPointLookUp LookUpOf(const ReaderOptions& reader);

/// An encoder with the settings of --reader, or of the variable ACG_PARAMETERS if --reader is empty, else
/// with the class's own. Throws UsageError for a setting that the class would ignore, or read only in part.
[[nodiscard]] std::unique_ptr<Encoder> MakeEncoder(const std::string& parameters, CardWait wait,
                                                   ReaderDLL library);

/// The settings as --reader takes them. What may be a key is masked.
[[nodiscard]] std::string SettingsOf(Encoder& encoder);

/// The type of the opened reader. Throws CardFailure.
[[nodiscard]] std::string TypeOf(Encoder& encoder);

/// The reader library that is loaded, whichever of its functions it has; empty if there is none.
[[nodiscard]] LoadedLibrary LibraryInUse(const EntryPointLookUp& lookUp);

/// Opens it. Its destruction closes it again. Ctrl-C ends a wait for a card.
void Open(Encoder& encoder);

/// The record of an operation that has returned sceError.
[[nodiscard]] std::optional<CError> FailureOf(Encoder& encoder, sceReturnCode result);

/// To be called with the result of each operation: throws CardFailure after sceError, and Interruption after
/// Ctrl-C.
void ThrowIfFailed(Encoder& encoder, sceReturnCode result);

/// The bytes of 32 hexadecimal digits, blanks anywhere allowed; nothing for any other text.
[[nodiscard]] std::optional<Block> ParseBlock(std::string_view digits);

} // namespace acg::tool
