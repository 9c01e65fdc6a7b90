#include "tool/DumpDifference.h"

#include "acg/cards/BlockAddress.h"
#include "tool/AccessWords.h"
#include "tool/Blocks.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

/// Keys are compared, but not shown. What isn't known of both counts as alike, access bits as a whole.
void ShowTrailer(int32_t number, const DumpedBlock& one, const DumpedBlock& other, Output& out)
{
    constexpr Block Factory = {0, 0, 0, 0, 0, 0, 0xFF, 0x07, 0x80};
    unsigned known = one.Known & other.Known;
    if ((known & AccessBytes) != AccessBytes) {
        known &= ~unsigned{AccessBytes};
    }
    Block first = one.Bytes;
    Block second = other.Bytes;
    for (size_t at = 0; at < first.size(); ++at) {
        if ((known >> at & 1) == 0) {
            first[at] = second[at] = Factory[at];
        }
    }
    std::vector<TrailerDifference> differences =
        TrailerDifferences(Trailer(first), Trailer(second), SectorOf(number));
    if (one.Known != other.Known) {
        differences.push_back({' ', "not all of it is known in both"});
    }
    out.Print(Format("block %d, the trailer of sector %d:", number, SectorOf(number)));
    JsonObject lines = JsonObject::array();
    for (const auto& [mark, text] : differences) {
        out.Print(Format("%c    %s", mark, text.c_str()));
        lines.push_back(
            {{"file", mark == ' ' ? JsonObject() : JsonObject(mark == '<' ? 1 : 2)}, {"text", text}});
    }
    out.Json["blocks"].push_back({{"block", number}, {"differences", lines}});
}

} // namespace

void ShowDifference(int32_t number, const DumpedBlock& one, const DumpedBlock& other, Output& out)
{
    if (IsTrailer(number)) {
        ShowTrailer(number, one, other, out);
        return;
    }
    out.Print("< " + HexDump(number, one.Bytes, one.Known));
    out.Print("> " + HexDump(number, other.Bytes, other.Known));
    out.Json["blocks"].push_back(
        {{"block", number},
         {"hex", {Digits(one.Bytes, one.Known, ""), Digits(other.Bytes, other.Known, "")}}});
}

} // namespace acg::tool
