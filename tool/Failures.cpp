#include "tool/Failures.h"

#include "acg/platform/LibraryFile.h"
#include "acg/platform/SystemPath.h"
#include "tool/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

constexpr int32_t LibraryNotFound = 53;

constexpr const char* CheckTheKey = "check the key, and whether it is key B (--as-b): acg trailer SECTOR "
                                    "--key KEY; if other sectors open with "
                                    "keys that you know, and this one with none, it is blocked for good";

// The library's calls, then the component's own: acg/encoder/Failures.h.
constexpr Remedy All[] = {
    {LibraryNotFound, "", "", "the reader library isn't there, or can't be loaded",
     "put the reader's library beside acg, or give --simulate to work without a reader"},
    {453, "", "", "the reader library lacks that function",
     "put the library that belongs to the reader beside acg, then: acg info"},
    {-2, "OpenComm", "", "the reader library couldn't open the device",
     "close other programs that use it, and check how the library spells it: "
     "acg info --reader \"Device=com3\""},
    {-2, "OpenReader", "0", "a reader was found, but couldn't be opened",
     "close other programs that use it, then: acg info"},
    {-4, "DetectReader", "0", "no reader answers on the link",
     "check power and cable; try another speed: acg info --reader \"Device=com1;Baud rate=19200\""},
    {-5, "select", "",
     "the reader refused to select the card; with the simulated reader, C: several cards in the field",
     "place a single card on the reader, then: acg info"},
    {-5, "read block", "N",
     "the reader refused the command; with the simulated reader: the card left the field",
     "hold the card still, and try again"},
    {-5, "block", "N",
     "the reader refused the command; with the simulated reader: the card left the field, and it isn't known "
     "whether a write was done",
     "put the card back on the reader, and read it before you write again"},
    {-5, "block", "RO",
     "the reader refused the command; with the simulated reader: the card has no such block, or, if the "
     "reader's type is MultiISO 1.0, the key is wrong or the sector blocked",
     "check the number, on a 1K card 0 to 63, and the key: acg trailer SECTOR --key KEY"},
    {-5, "block", "",
     "the reader refused the command; with the simulated reader, F: the card doesn't grant this to this key",
     "see what each key may do, and use the other one: acg trailer SECTOR --key KEY"},
    {-6, "", "", "the reader answered the login with data, or with nothing",
     "put the library that belongs to the reader beside acg, then: acg info"},
    {-7, "login", "X",
     "the reader refused the login; with the simulated reader: the key is wrong, or the sector is blocked "
     "for good",
     CheckTheKey},
    {-7, "login", "R", "the reader refused the login; with the simulated reader: the card has no such sector",
     "check the number: a 1K card has the sectors 0 to 15, blocks 0 to 63"},
    {-7, "login", "N", "the reader refused the login; with the simulated reader: the card left the field",
     "hold the card still, and try again"},
    {-7, "login", "", "the login didn't succeed, as with a wrong key", CheckTheKey},
    {-8, "", "", "no card in the field", "place a card on the reader, then: acg info"},
};

} // namespace

std::span<const Remedy> Remedies()
{
    return All;
}

const Remedy* FindRemedy(const CError& record)
{
    const std::string path = ToUtf8(record.RdrCommand);
    const std::string letter = ToUtf8(record.RdrRetCode);
    const auto* const found = std::ranges::find_if(All, [&](const Remedy& row) {
        const bool hasLetter =
            row.Letters.empty() || (!letter.empty() && row.Letters.find(letter) != std::string_view::npos);
        return row.Number == record.Number && path.ends_with(row.Path) && hasLetter;
    });
    return found != std::end(All) ? found : nullptr;
}

std::string MeaningOf(const CError& record)
{
    const Remedy* const remedy = FindRemedy(record);
    return remedy != nullptr ? std::string(remedy->Meaning) : ToUtf8(record.Description);
}

std::string ActionOf(const Remedy& row)
{
    std::string action(row.Action);
    if (row.Number == LibraryNotFound) {
        action += "; searched: " + Utf8Of(OwnFolder()) + ", then the system's loader path";
    }
    return action;
}

std::string InWords(const CError& record)
{
    constexpr size_t Column = 12;
    std::string words = ToUtf8(record.Description) + Format(" (%d)\n", record.Number);
    if (const Remedy* const remedy = FindRemedy(record)) {
        words += "  it means  " + Wrap(remedy->Meaning, Column) + '\n';
        words += "  do this   " + Wrap(ActionOf(*remedy), Column) + '\n';
    }
    words += "  record    " + ToUtf8(record.ComFunction);
    for (const std::wstring& part : {record.RdrCommand, record.RdrRetCode}) {
        words += part.empty() ? "" : ", " + Printable(ToUtf8(part));
    }
    return words + (record.LastDllError != 0 ? Format(", system error %d", record.LastDllError) : "");
}

} // namespace acg::tool
