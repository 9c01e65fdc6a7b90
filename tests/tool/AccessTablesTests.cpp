// The tables of docs/access-levels.md against the rules: the document has each row as they compute it.
#include "acg/encoder/Enums.h"
#include "tool/SectorAccess.h"

#include <bitset>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

using namespace acg;
using namespace acg::tool;

namespace
{

const char* const Block[] = {"-", "r", "w", "rw"};
const char* const Trailer[] = {"nothing", "keys", "conditions", "keys and conditions"};
const char* const Holders[] = {"nobody", "A", "B", "A or B"};

std::string Bits(AccessTriple triple)
{
    return std::bitset<3>(static_cast<unsigned>(triple)).to_string();
}

void ExpectRow(std::initializer_list<std::string> cells)
{
    static const std::string document =
        (std::ostringstream() << std::ifstream(ACG_DOCS "/access-levels.md").rdbuf()).str();
    std::string row = "\n|";
    for (const std::string& cell : cells) {
        row.append(" ").append(cell).append(" |");
    }
    EXPECT_NE(document.find(row + "\n"), std::string::npos) << row;
}

TEST(AccessTables, DocumentHasEachRowAsTheRulesSay)
{
    for (int32_t level = 0; level <= HighestLevel + 4; ++level) {
        const bool alone = level > HighestLevel; // then the part of key A, 0 to 3
        const int32_t asked = level & HighestLevel;
        const uint8_t keys = alone ? KeyAAlone : BothKeys;
        const auto encode = [&](int32_t block, int32_t trailer, bool listed) {
            return Encode({{block, block, block, trailer}, keys, {listed, listed, listed}});
        };
        const auto cells = [&](const char* const(&words)[4], int32_t ofLevel) {
            const std::string ofA = words[ofLevel & 3];
            return alone ? ofA : ofA + " | " + words[ofLevel >> 2];
        };
        const std::string number = std::to_string(asked);

        const auto bytes = encode(asked, alone ? 3 : 12, /*listed=*/false);
        const auto ofListed = encode(asked, alone ? 3 : 12, /*listed=*/true);
        if (bytes && ofListed) {
            const AccessTriple stored = TripleIn(*bytes, 2);
            const AccessTriple listed = TripleIn(*ofListed, 2);
            const Rights granted = RightsOfBits(*bytes)[2];
            const std::string bits = Bits(stored) + (listed != stored ? ", or " + Bits(listed) : "");
            ExpectRow({number, cells(Block, asked), bits,
                       cells(Block, LevelOf(BlockRights{granted[Right::Read], granted[Right::Write]})),
                       std::to_string(LevelOf(BlockRightsOf(stored)))});
        } else {
            ExpectRow({number, cells(Block, asked), "refused | | |"});
        }
        if (const auto written = encode(alone ? 3 : 15, asked, false)) {
            const TrailerRights& rights = TrailerRightsIn(*written);
            const int shift = alone ? 0 : 2;
            const int32_t back = LevelOf(rights);
            ExpectRow({number, Trailer[asked >> shift], Bits(TripleIn(*written, TrailerSlot)),
                       std::string(Trailer[back >> shift]) + (AreKeysFixed(rights) ? ", for good" : ""),
                       std::to_string(back), std::to_string(KeysUsedBy(rights))});
        } else {
            EXPECT_TRUE((asked & 3) != 0 && !alone) << asked;
        }
    }
    const char* const storedBy[] = {"10, 11, 14, 15; key A alone: 2, 3",
                                    "5; key A alone: 1",
                                    "none",
                                    "8, 12",
                                    "9, 13, not listed",
                                    "4",
                                    "9, 13, listed",
                                    "0; key A alone: 0"};
    for (size_t at = 0; at < std::size(storedBy); ++at) {
        const auto triple = static_cast<AccessTriple>(at);
        const Rights rights = DataRightsOf(triple);
        ExpectRow({Bits(triple), storedBy[at], Holders[static_cast<int>(rights[Right::Increment])],
                   Holders[static_cast<int>(rights[Right::Decrement])]});
    }
}

} // namespace
