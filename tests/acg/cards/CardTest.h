// What the tests of the card operations have in common.
#pragma once

#include "tests/ScriptedReader.h"

namespace acg
{

using Numbers = std::vector<int32_t>;

/// Of WriteSectorTrailer. The levels: of the three data blocks, then of the trailer.
struct TrailerArguments {
    std::wstring KeyA = L"A0A1A2A3A4A5";
    std::wstring KeyB = L"B0B1B2B3B4B5";
    uint8_t KeysToUse = KeyAAlone;
    Numbers Levels = {-1, -1, -1, -1};
    std::optional<int32_t> BX;
    int32_t Sector = 1;
};

inline sceReturnCode WriteTrailer(Encoder& encoder, const std::wstring& key, uint8_t keyType,
                                  const TrailerArguments& given)
{
    const auto level = [&](size_t slot) {
        return static_cast<SCBS_SecurityLevelEnum>(given.Levels.at(slot));
    };
    return encoder.WriteSectorTrailer(given.Sector, key, keyType, given.KeyA, given.KeyB, given.KeysToUse,
                                      level(0), level(1), level(2),
                                      static_cast<SCSS_SecurityLevelEnum>(given.Levels.at(3)), given.BX);
}

/// What ReadSectorTrailer returns and makes of arguments that were 9: keys used, the four levels, BX.
inline Numbers ReadTrailer(Encoder& encoder, std::wstring_view keyA, int32_t sector)
{
    uint8_t keys = 9;
    uint8_t bx = 9;
    auto first = SCBS_SecurityLevelEnum{9};
    auto second = first;
    auto third = first;
    auto trailer = SCSS_SecurityLevelEnum{9};
    const auto code = encoder.ReadSectorTrailer(sector, keyA, 1, keys, first, second, third, trailer, bx);
    return {code, keys, first, second, third, trailer, bx};
}

} // namespace acg
