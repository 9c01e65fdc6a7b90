#include "tool/CardSize.h"

#include "acg/cards/BlockAddress.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

bool Opens(Encoder& encoder, int32_t sector, const Key& key)
{
    Block trailer;
    return TryReadBlock(encoder, TrailerBlock(sector), {key, KeyTypeA}, trailer) == Refusal::None ||
           TryReadBlock(encoder, TrailerBlock(sector), {key, KeyTypeB}, trailer) == Refusal::None;
}

} // namespace

std::optional<CardSize> ParseCardSize(std::string_view text)
{
    if (text.empty()) {
        return std::nullopt;
    }
    if (text != "1k" && text != "4k") {
        throw UsageError{"--card is 1k or 4k"};
    }
    return text == "1k" ? CardSize{"1k", LastSector1K, "--card says so"}
                        : CardSize{"4k", LastSector, "--card says so"};
}

CardSize FindCardSize(Encoder& encoder, const std::vector<Key>& keys)
{
    for (int32_t sector = LastSector1K + 1; sector <= LastSector; ++sector) {
        for (const Key& key : keys) {
            if (Opens(encoder, sector, key)) {
                return {"4k", LastSector, Format("a key opens sector %d", sector)};
            }
        }
    }
    return {"1k", LastSector1K, Format("no key opens a sector from %d on", LastSector1K + 1)};
}

} // namespace acg::tool
