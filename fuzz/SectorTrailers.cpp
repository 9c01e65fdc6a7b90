// Any arguments of WriteSectorTrailer, on the simulated reader with a new 4K card. What is refused leaves the
// card as it was; what was written reads back as docs/access-levels.md says. The texts: the key to log in
// with and its type, the new keys, KeysToUse, the four levels, the sector, BX or nothing, and a block to
// write as a value block before.
#include "fuzz/Fuzz.h"
#include "simulator/Reader.h"

#include <algorithm>

using namespace acg;

namespace
{

/// What a level reads back as, for slot 3 a trailer's; -1 where it is refused.
int32_t ReadsAs(int32_t asked, size_t slot, bool keyAAlone)
{
    const int32_t level = asked | (asked & 0b1010) >> 1; // who writes reads as well
    const int32_t ofKeyA = level & 3;
    if (asked < 0 || asked > 15) {
        return asked != -1 ? -1 : slot == 3 ? 3 : 15; // what a new card has
    }
    if (slot == 3) {
        return keyAAlone ? ofKeyA : ofKeyA == 0 ? asked : -1;
    }
    const bool refused = (ofKeyA & ~(level >> 2)) != 0;   // key A can't have more than key B
    return keyAAlone ? ofKeyA * 5 : refused ? -1 : level; // the bits would grant key B what key A has
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    FuzzedDataProvider input(Data, Size);
    simulator::Card card(simulator::BlocksOf4K, {1, 2, 3, 4});
    simulator::Reader reader({}, &card);
    int writes = 0;
    fuzz::Library::Answer = [&](auto, std::string_view command, const char* data) {
        writes += command == "write block" ? 1 : 0;
        return command.empty() ? "1" : reader.Send(command, data);
    };
    Encoder encoder(ReaderDLL(fuzz::Library::Find), fuzz::JumpingClock);
    encoder.ReOpenEncoder();
    const auto text = [&] { return FromAnsi(input.ConsumeRandomLengthString()); };
    const auto number = [&] { return std::atoi(input.ConsumeRandomLengthString().c_str()); };

    const std::wstring key = text();
    const auto keyType = static_cast<uint8_t>(number());
    std::wstring keyA = text();
    std::wstring keyB = text();
    std::erase(keyA, L' '); // they are allowed around a key
    std::erase(keyB, L' ');
    const auto keysToUse = static_cast<uint8_t>(number());
    const int32_t asked[] = {number(), number(), number(), number()};
    const int32_t sector = number();
    const std::wstring ofBX = text();
    const auto bx = ofBX.empty() ? std::nullopt : std::optional<int32_t>(std::atoi(ToAnsi(ofBX).c_str()));
    static_cast<void>(encoder.WriteValueBloc(number(), L"FFFFFFFFFFFF", KeyTypeA, /*value=*/7));
    using Level = SCBS_SecurityLevelEnum;
    const bool written = encoder.WriteSectorTrailer(sector, key, keyType, keyA, keyB, keysToUse,
                                                    Level{asked[0]}, Level{asked[1]}, Level{asked[2]},
                                                    SCSS_SecurityLevelEnum{asked[3]}, bx) == sceSuccess;
    assert(written == (encoder.LastError()->Number == 0) && writes == (written ? 1 : 0));

    const auto isKey = [](const std::wstring& given) {
        return given.size() == 12 && given.find_first_not_of(L"0123456789ABCDEFabcdef") == std::wstring::npos;
    };
    const bool keyAAlone = keysToUse <= KeyAAlone;
    int32_t expected[4];
    for (size_t slot = 0; slot < 4; ++slot) {
        expected[slot] = ReadsAs(asked[slot], slot, keyAAlone);
    }
    const bool valid = isKey(keyA) && isKey(keyB) && std::ranges::count(expected, -1) == 0 &&
                       bx.value_or(0) == (bx.value_or(0) & 255);
    const bool granted = sector >= 0 && sector < 40 && key == L"FFFFFFFFFFFF" && keyType != KeyTypeB;
    assert(written ? valid : !(valid && granted));

    uint8_t keysUsed = 9;
    uint8_t readBX = 9;
    Level levels[3]{};
    SCSS_SecurityLevelEnum ofTrailer{};
    const auto reads = [&](const std::wstring& with, uint8_t type) {
        return encoder.ReadSectorTrailer(sector, with, type, keysUsed, levels[0], levels[1], levels[2],
                                         ofTrailer, readBX) == sceSuccess;
    };
    if (written) {
        assert(reads(keyA, KeyTypeA) && readBX == bx.value_or(0x69));
        assert(std::equal(levels, levels + 3, expected) && ofTrailer == expected[3]);
        assert(keysUsed == (keyAAlone || asked[3] == -1 ? KeyAAlone : BothKeys));
        assert(reads(keyB, KeyTypeB) == (keysUsed == BothKeys));
    } else if (!reads(key, keyType)) {
        assert(keysUsed == 9 && readBX == 9 && (levels[0] | levels[1] | levels[2] | ofTrailer) == 0);
    }
    return 0;
}
