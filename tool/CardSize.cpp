#include "tool/CardSize.h"

#include "acg/cards/BlockAddress.h"
#include "tool/Blocks.h"
#include "tool/Failures.h"
#include "tool/Text.h"

namespace acg::tool
{

namespace
{

bool Opens(Encoder& opened, int32_t sector, const std::wstring& key)
{
    Block trailer;
    return TryReadBlock(opened, TrailerBlock(sector), {key, KeyTypeA}, trailer) == Refusal::None ||
           TryReadBlock(opened, TrailerBlock(sector), {key, KeyTypeB}, trailer) == Refusal::None;
}

} // namespace

std::optional<CardSize> ParseCardSize(std::string_view Text)
{
    if (Text.empty()) {
        return std::nullopt;
    }
    if (Text != "1k" && Text != "4k") {
        throw UsageError{"--card is 1k or 4k"};
    }
    return Text == "1k" ? CardSize{"1k", LastSector1K, "--card says so"}
                        : CardSize{"4k", LastSector, "--card says so"};
}

CardSize FindCardSize(Encoder& Opened, const std::vector<std::wstring>& Keys)
{
    for (int32_t sector = LastSector1K + 1; sector <= LastSector; ++sector) {
        for (const std::wstring& key : Keys) {
            if (Opens(Opened, sector, key)) {
                return {"4k", LastSector, Format("a key opens sector %d", sector)};
            }
        }
    }
    return {"1k", LastSector1K, Format("no key opens a sector from %d on", LastSector1K + 1)};
}

} // namespace acg::tool
