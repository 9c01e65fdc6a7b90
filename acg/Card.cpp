#include "acg/Card.h"

#include "acg/Failures.h"
#include "acg/ReplyWatch.h"
#include "acg/System.h"
#include "acg/Text.h"
#include "platform/TextCase.h"
#include "reader/HexText.h"

#include <algorithm>
#include <charconv>

namespace acg::tool
{

namespace
{

/// The class ignores what it doesn't know; a person wants to be told.
void CheckParameters(const std::wstring& text)
{
    constexpr std::wstring_view Numbers[] = {L"autodetect", L"baud rate", L"timeout"};
    constexpr std::wstring_view Texts[] = {L"device", L"encoding capabilities", L""};

    const wchar_t separator = text.find(L'\r') != std::wstring::npos ? L'\r' : L';';
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(separator, at), text.size());
        const std::wstring entry = text.substr(at, end - at);
        at = end + 1;
        const size_t sign = std::min(entry.find(L'='), entry.size());
        const size_t start = entry.starts_with(L'\n') ? 1 : 0;
        const std::wstring name = ToLower(TrimBlanks(std::wstring_view(entry).substr(start, sign - start)));
        if (std::ranges::find(Numbers, name) != std::end(Numbers)) {
            const std::string value = ToUtf8(entry.substr(std::min(sign + 1, entry.size())));
            static_cast<void>(
                ParseNumber(value, INT32_MIN, INT32_MAX, "the setting " + ToUtf8(entry) + " isn't a number"));
        } else if (std::ranges::find(Texts, name) == std::end(Texts)) {
            throw UsageError{"no such setting: " + ToUtf8(entry) +
                             "; there are Device, Autodetect, Baud rate and Timeout, joined by \";\""};
        }
    }
}

/// The fifth field of the information text: the number that OpenEncoder requires.
int32_t HandleNumber(const std::wstring& information)
{
    size_t from = 0;
    for (int field = 1; field < 5; ++field) {
        from = information.find(L'|', from) + 1;
    }
    return static_cast<int32_t>(std::stol(information.substr(from)));
}

} // namespace

std::unique_ptr<Encoder> MakeEncoder(const std::string& Parameters)
{
    // Once interrupted it is an hour later at each look, so that a wait ends.
    const auto clock = [late = std::chrono::hours(0)]() mutable {
        late += std::chrono::hours(WasInterrupted() ? 1 : 0);
        return std::chrono::steady_clock::now() + late;
    };
    auto encoder = std::make_unique<Encoder>(WatchedLibrary(), clock);
    const std::wstring text =
        ToWide(!Parameters.empty() ? Parameters : EnvironmentVariable("ACG_PARAMETERS").value_or(""));
    CheckParameters(text);
    encoder->Parameters(text);
    return encoder;
}

void Open(Encoder& Closed)
{
    Must(Closed, Closed.OpenEncoder(HandleNumber(Closed.GetInformation())));
}

std::unique_ptr<Encoder> OpenReader(const std::string& Parameters)
{
    auto encoder = MakeEncoder(Parameters);
    Open(*encoder);
    return encoder;
}

void Must(Encoder& Opened, sceReturnCode Result)
{
    if (WasInterrupted()) {
        throw Interruption{};
    }
    if (Result == sceError) {
        throw CardFailure{*Opened.LastError()};
    }
}

std::wstring SerialNumberOf(Encoder& Opened)
{
    std::wstring serial;
    Must(Opened, Opened.ReadSerialNumber(serial));
    if (serial.empty()) {
        throw OtherFailure{"the reader's reply to selecting the card has no serial number"};
    }
    return serial;
}

Block ReadBlock(Encoder& Opened, int32_t Number, const Key& With)
{
    std::wstring contents;
    Must(Opened, Opened.ReadDataBloc(Number, With.Digits, With.Type, contents));
    if (!WasWholeBlock()) {
        throw OtherFailure{Format("the reader's reply to reading block %d isn't a whole block", Number)};
    }
    const std::optional<Block> block = ParseBlock(ToUtf8(contents));
    if (!block) {
        throw OtherFailure{Format("the reader's reply to reading block %d isn't hexadecimal", Number)};
    }
    return *block;
}

std::optional<Block> ParseBlock(std::string_view Digits)
{
    std::string dense(Digits);
    std::erase(dense, ' ');
    Block block = {};
    if (dense.size() != 2 * block.size()) {
        return std::nullopt;
    }
    for (size_t at = 0; at < block.size(); ++at) {
        const char* const pair = &dense[2 * at];
        const auto [end, error] = std::from_chars(pair, pair + 2, block[at], 16);
        if (end != pair + 2) {
            return std::nullopt;
        }
    }
    return block;
}

} // namespace acg::tool
