#include "tool/DumpFile.h"

#include "acg/cards/BlockAddress.h"
#include "acg/platform/AnsiText.h"
#include "acg/platform/TextCase.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/Text.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <system_error>

namespace acg::tool
{

namespace
{

bool IsText(const std::filesystem::path& file)
{
    return std::ranges::equal(file.extension().u8string(), std::u8string_view(u8".txt"), {},
                              [](char8_t character) { return AsciiToLower(character); });
}

/// A line of text: 32 digits, of which "--" stands for a byte that isn't known.
DumpedBlock ParseLine(std::string line, const std::string& place)
{
    DumpedBlock block{.Known = WholeBlock};
    for (size_t at = 0; at < block.Bytes.size() && 2 * at + 1 < line.size(); ++at) {
        if (line.compare(2 * at, 2, "--") == 0) {
            line.replace(2 * at, 2, "00");
            block.Known = static_cast<uint16_t>(block.Known & ~(1U << at));
        }
    }
    const std::optional<Block> bytes = ParseBlock(line);
    if (!bytes) {
        throw UsageError{place + " isn't 32 hexadecimal digits"};
    }
    block.Bytes = *bytes;
    return block;
}

/// Raw bytes have zeros for what wasn't read. No card has a trailer or a key of zeros to show; so a sector
/// with such a trailer wasn't read, nor were its data blocks of zeros.
void ForgetUnread(Dump& dump)
{
    for (int32_t sector = 0; TrailerBlock(sector) < static_cast<int32_t>(dump.size()); ++sector) {
        DumpedBlock& trailer = dump[static_cast<size_t>(TrailerBlock(sector))];
        if (trailer.Bytes == Block{}) {
            for (int32_t number = TrailerBlock(sector - 1) + 1; number <= TrailerBlock(sector); ++number) {
                DumpedBlock& block = dump[static_cast<size_t>(number)];
                block.Known = block.Bytes == Block{} ? 0 : block.Known;
            }
        }
        const Trailer parts(trailer.Bytes);
        const unsigned unknown =
            (parts.KeyA.IsZeros() ? KeyABits : 0U) | (parts.KeyB.IsZeros() ? KeyBBits : 0U);
        trailer.Known = static_cast<uint16_t>(trailer.Known & ~unknown);
    }
}

std::string InWords(const std::error_code& error, const std::string& file)
{
    if (error == std::errc::file_exists) {
        return file + " exists; --force replaces it";
    }
    return "can't write " + file + ": " +
           (error == NotARegularFile ? "not a regular file" : ToUtf8(FromAnsi(error.message())));
}

} // namespace

bool IsTextDump(const std::string& name)
{
    return IsText(ToPath(name));
}

Dump ReadDump(const std::string& name)
{
    const std::filesystem::path path = ToPath(name);
    // More than any dump has, so that a longer file is noticed.
    constexpr size_t MaxSize = size_t{LastBlock + 1} * 40;
    const std::optional<std::string> contents = ReadFile(path, MaxSize);
    if (!contents || contents->empty()) {
        throw UsageError{"can't read " + name + ", or it is empty"};
    }

    const std::string& bytes = *contents;
    Dump dump;
    if (IsText(path)) {
        std::string_view text = bytes;
        text.remove_prefix(text.starts_with(Utf8Mark) ? Utf8Mark.size() : 0);
        text.remove_suffix(text.ends_with('\n') ? 1 : 0);
        for (std::string_view line : Split(text, '\n')) {
            line.remove_suffix(line.ends_with('\r') ? 1 : 0);
            dump.push_back(ParseLine(
                std::string(line), Format("%s, line %d,", name.c_str(), static_cast<int>(dump.size()) + 1)));
        }
    } else {
        for (size_t at = 0; at + std::size(Block()) <= bytes.size(); at += std::size(Block())) {
            DumpedBlock& block = dump.emplace_back(DumpedBlock{.Known = WholeBlock});
            std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), block.Bytes.size(),
                        block.Bytes.begin());
        }
        ForgetUnread(dump);
    }
    const bool isWhole = IsText(path) || bytes.size() % std::size(Block()) == 0;
    if (!isWhole || dump.size() > LastBlock + 1) {
        throw UsageError{name + " isn't the dump of a card: " +
                         (isWhole ? "it is longer than that of a 4K card" : "its last block isn't whole")};
    }
    return dump;
}

const DumpedBlock& BlockIn(const Dump& card, int32_t number)
{
    if (number >= static_cast<int32_t>(card.size())) {
        throw OtherFailure{Format("the dump has no block %d: it ends with block %d", number,
                                  static_cast<int32_t>(card.size()) - 1)};
    }
    return card[static_cast<size_t>(number)];
}

std::string SerialNumberIn(const Dump& card)
{
    constexpr size_t Size = 4;
    const bool isKnown = (card.front().Known & BitsOf(0, Size)) == BitsOf(0, Size);
    return isKnown ? Digits(card.front().Bytes, WholeBlock, "").substr(0, 2 * Size) : "";
}

void RequireWritable(const std::string& file, ExistingFile existing)
{
    FileReplacement attempt; // removed at once, so that nothing is left if the program is killed meanwhile
    const std::error_code error = attempt.Create(ToPath(file).native(), existing);
    if (error) {
        throw UsageError{InWords(error, file)};
    }
}

void WriteDump(const std::string& file, const Dump& card, ExistingFile existing)
{
    const std::filesystem::path path = ToPath(file);
    std::string contents;
    for (const DumpedBlock& block : card) {
        if (IsText(path)) {
            contents += Digits(block.Bytes, block.Known, "") + '\n';
        } else {
            contents.append(block.Bytes.begin(), block.Bytes.end());
        }
    }
    FileReplacement replacement;
    std::error_code error = replacement.Create(path.native(), existing);
    if (!error) {
        error = replacement.Finish(contents);
    }
    if (error) {
        throw OtherFailure{InWords(error, MaskKeys(file))};
    }
}

} // namespace acg::tool
