#include "tool/Card.h"

#include "abi/ACGReader330.h"
#include "acg/encoder/NumberReading.h"
#include "acg/encoder/Parameters.h"
#include "acg/platform/HexText.h"
#include "acg/platform/LibraryFile.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>
#include <utility>

namespace acg::tool
{

namespace
{

/// The class ignores what it doesn't know, and reads a number as far as it goes; a person wants to be told.
/// No value is shown, as it may be a key.
void CheckParameters(std::wstring_view text)
{
    for (ParameterEntries entry(text); entry.Next();) {
        const bool isAutodetect = entry.Key == L"autodetect";
        const bool isNumber = isAutodetect || entry.Key == L"baud rate" || entry.Key == L"timeout";
        if ((entry.Key.empty() && !entry.Value) || entry.Key == L"encoding capabilities") {
            continue;
        }
        if (!entry.Value) {
            throw UsageError{"a setting has no \"=\", as in Device=com1;Timeout=500"};
        }
        if (!isNumber && entry.Key != L"device") {
            throw UsageError{"unknown setting: " + ToUtf8(entry.Key) +
                             "; the settings are Device, Autodetect, Baud rate, Timeout"};
        }
        const bool fits = isAutodetect ? ReadField<uint8_t>(*entry.Value).has_value()
                                       : ReadField<int32_t>(*entry.Value).has_value();
        if (isNumber && !(fits && ReadNumber(*entry.Value).IsAll)) {
            throw UsageError{Format("the setting %s is a number %s, with nothing after it",
                                    ToUtf8(entry.Key).c_str(),
                                    isAutodetect ? "from 0 to 255" : "of 32 bits")};
        }
    }
}

/// The fifth field of the information text: the number that Encoder::OpenEncoder requires.
int32_t HandleNumber(const std::wstring& information)
{
    size_t from = 0;
    for (int field = 1; field < 5; ++field) {
        from = information.find(L'|', from) + 1;
    }
    return static_cast<int32_t>(std::stol(information.substr(from)));
}

} // namespace

Secret<wchar_t> DigitsOf(const Key& key)
{
    std::wstring digits;
    digits.reserve(2 * key.size());
    for (const uint8_t byte : key) {
        digits += TwoHexDigits(byte);
    }
    return Secret<wchar_t>(std::move(digits));
}

Trailer::Trailer(const Block& block) : UserByte(block[UserByteAt])
{
    std::copy_n(block.begin(), KeySize, KeyA.begin());
    std::copy_n(block.begin() + AccessBitsAt, Conditions.size(), Conditions.begin());
    std::copy_n(block.begin() + KeyBAt, KeySize, KeyB.begin());
}

EntryPointLookUp LookUpOf(const ReaderOptions& reader)
{
    if (!reader.IsSimulated) {
        return FindInLibrary;
    }
    std::string searched;
    for (const char* const folder : {"simulator", ACG_SIMULATOR_FOLDER}) {
        const std::filesystem::path file =
            (std::filesystem::path(OwnFolder()) / folder / LibraryFileName("ACGReader330"))
                .lexically_normal();
        std::error_code error;
        if (std::filesystem::exists(file, error)) {
            return [file](ReaderFunction function) { return FindInFile(file.native(), NameOf(function)); };
        }
        searched += (searched.empty() ? "" : " or ") + Utf8Of(file);
    }
    throw OtherFailure{"there is no simulated reader library: no file " + searched};
}

std::unique_ptr<Encoder> MakeEncoder(const std::string& parameters, CardWait wait, ReaderDLL library)
{
    // After Ctrl-C the clock advances by an hour at each look, so that a wait ends; without a wait, always.
    const auto clock = [wait, late = std::chrono::hours(0)]() mutable {
        late += std::chrono::hours(wait == CardWait::None || WasInterrupted() ? 1 : 0);
        return std::chrono::steady_clock::now() + late;
    };
    auto encoder = std::make_unique<Encoder>(std::move(library), clock);
    const std::wstring text =
        ToWide(!parameters.empty() ? parameters : Variable("ACG_PARAMETERS").value_or(""));
    CheckParameters(text);
    encoder->Parameters(text);
    return encoder;
}

std::string SettingsOf(Encoder& encoder)
{
    std::string text = ToUtf8(encoder.Parameters());
    text.erase(0, text.find("Device="));
    for (size_t at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n")) {
        text = text.substr(0, at) + ';' + text.substr(at + 2);
    }
    return MaskKeys(text);
}

std::string TypeOf(Encoder& encoder)
{
    try {
        return ToUtf8(encoder.ReaderType());
    } catch (const RaisedFailure&) {
        throw CardFailure{*encoder.LastError()};
    }
}

LoadedLibrary LibraryInUse(const EntryPointLookUp& lookUp)
{
    for (int function = 0; function < ReaderFunctionCount; ++function) {
        const EntryPoint entry = lookUp(static_cast<ReaderFunction>(function));
        if (entry.Address != nullptr) {
            return LibraryOf(entry.Address);
        }
    }
    return {};
}

void Open(Encoder& encoder)
{
    ThrowIfFailed(encoder, encoder.OpenEncoder(HandleNumber(encoder.GetInformation())));
}

std::optional<CError> FailureOf(Encoder& encoder, sceReturnCode result)
{
    return result == sceError ? std::optional(*encoder.LastError()) : std::nullopt;
}

void ThrowIfFailed(Encoder& encoder, sceReturnCode result)
{
    if (WasInterrupted()) {
        throw Interruption{};
    }
    if (const std::optional<CError> failure = FailureOf(encoder, result)) {
        throw CardFailure{*failure};
    }
}

std::optional<Block> ParseBlock(std::string_view digits)
{
    std::string dense(digits);
    std::erase(dense, ' ');
    const std::optional<std::vector<uint8_t>> bytes = FromHex(dense);
    Block block = {};
    if (!bytes || bytes->size() != block.size()) {
        return std::nullopt;
    }
    std::ranges::copy(*bytes, block.begin());
    return block;
}

} // namespace acg::tool
