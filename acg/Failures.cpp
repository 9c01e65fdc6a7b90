#include "acg/Failures.h"

#include "acg/Text.h"

#include <algorithm>

namespace acg::tool
{

namespace
{

// The library's calls, then the component's own: encoder/Failures.h.
constexpr Remedy All[] = {
    {53, "", "", "the reader library isn't there, or can't be loaded",
     "put it beside the program, or ask the loader what it lacks"},
    {453, "", "", "the library lacks that function", "use the library that belongs to this component"},
    {-1, "", "", "there is no open reader", "call OpenEncoder, and look at its result"},
    {-2, "OpenComm", "",
     "the device couldn't be opened, or the number isn't that of the latest GetInformation",
     "check Device: is it free, and spelt as the library wants it? A host reads the number right before "
     "OpenEncoder"},
    {-2, "OpenReader", "0", "a reader was found, but couldn't be opened", "is another program using it?"},
    {-4, "DetectReader", "0", "nothing answers on the link", "check power and cable, Baud rate, Autodetect"},
    {-5, "select", "", "the card couldn't be selected", "one card in the field at a time"},
    {-5, "block", "N",
     "the card left in the middle of the operation; it isn't known whether a write was done",
     "read the block back before writing again; after a sector trailer try both the new keys and the old "
     "ones"},
    {-5, "block", "RO", "the card has no such block; with a reader of the type MultiISO 1.0 also a wrong key",
     "check the number of the block or sector, and the key"},
    {-5, "block", "", "the card doesn't grant this to this key",
     "use the other key, or see the access levels"},
    {-6, "", "", "the reader answered the login with data, or with nothing",
     "the reader library doesn't do what it should"},
    {-7, "login", "X", "the key is wrong",
     "check the key, and whether it is key A or key B (KeyType, --as-b)"},
    {-7, "login", "?", "the key isn't 12 hexadecimal digits",
     "check the key: it goes to the reader untested"},
    {-7, "login", "R", "the card has no such sector", "check the block; is it a 1K card?"},
    {-7, "login", "N", "the card left after it had been selected", "hold it still, and call again"},
    {-8, "", "", "no card in the field", "place one on the reader, and call again; the encoder stays open"},
    {-11, "", "", "BlocContents isn't 16 bytes in hexadecimal digits", "nothing was sent"},
    {-12, "", "", "KeyA or KeyB of WriteSectorTrailer", "nothing was sent"},
    {-13, "", "", "a level out of range, or one that the card can't store",
     "see the refused levels; nothing was written"},
    {-14, "", "", "FromByte or ToByte is above 15, or ToByte is below FromByte", "nothing was written"},
    {-15, "", "", "BX isn't from 0 to 255", "nothing was sent"},
    {-16, "", "", "ATRString, CardType and SerialNumberLength always raise it", "don't use them"},
};

} // namespace

std::span<const Remedy> Remedies()
{
    return All;
}

const Remedy* FindRemedy(const CError& Record)
{
    const std::string path = ToUtf8(Record.RdrCommand);
    const std::string letter = ToUtf8(Record.RdrRetCode);
    const auto* const found = std::ranges::find_if(All, [&](const Remedy& row) {
        const bool hasLetter =
            row.Letters.empty() || (!letter.empty() && row.Letters.find(letter) != std::string_view::npos);
        return row.Number == Record.Number && path.ends_with(row.Path) && hasLetter;
    });
    return found != std::end(All) ? found : nullptr;
}

std::string InWords(const CError& Record)
{
    std::string words = ToUtf8(Record.Description) + Format(" (%d)\n", Record.Number);
    if (const Remedy* const remedy = FindRemedy(Record)) {
        words += "  it means  " + std::string(remedy->Meaning) + '\n';
        words += "  do this   " + std::string(remedy->Action) + '\n';
    }
    words += "  record    " + ToUtf8(Record.ComFunction);
    for (const std::wstring& part : {Record.RdrCommand, Record.RdrRetCode}) {
        words += part.empty() ? "" : ", " + ToUtf8(part);
    }
    return words + (Record.LastDllError != 0 ? Format(", system error %d", Record.LastDllError) : "");
}

} // namespace acg::tool
