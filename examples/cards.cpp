// A host that personalises one card after the other in one opened session: it waits for a card, writes a
// block and new keys, reads the block back by the new key, and prints a line.
//
//     example-cards [PARAMETERS]
//
// Without parameters five cards are laid on a simulated reader. Ends with status 1 if a step fails, or no
// other card comes in ten seconds.
#include "examples/Host.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace
{

using namespace acg;

constexpr int CardCount = 5;
constexpr int32_t Sector = 1;
constexpr int32_t Block = 4;

// A card takes 25 commands and every look for the next one takes 1. The line has a speed, so that a host
// which waits is idle.
const std::wstring FiveCards =
    L"Device=com1,baud=115200,place=40/A1000002,place=80/A1000003,place=120/A1000004/4k,place=160/A1000005";

/// Waits until a card with another serial number lies in the field.
std::wstring NextCard(Encoder& encoder, const std::wstring& former)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    std::wstring serialNumber;
    while (encoder.ReadSerialNumber(serialNumber) != sceSuccess || serialNumber == former) {
        if (std::chrono::steady_clock::now() > end) {
            std::puts("No other card has come.");
            encoder.CloseEncoder();
            std::exit(EXIT_FAILURE);
        }
    }
    return serialNumber;
}

/// Returns the block as it reads by the new key A, which may only read.
std::wstring Personalise(Encoder& encoder, int card)
{
    std::wstring contents = L"0000000000000000000000000000000" + std::to_wstring(card);
    MustSucceed(encoder, encoder.WriteDataBloc(Block, FactoryKey, KeyTypeA, contents));
    constexpr auto Level = scbs_A_Read + scbs_B_ReadWrite;
    MustSucceed(encoder, encoder.WriteSectorTrailer(Sector, FactoryKey, KeyTypeA, KeyA, KeyB, BothKeys, Level,
                                                    Level, Level, scss_B_WriteKeysConditions));
    MustSucceed(encoder, encoder.ReadDataBloc(Block, KeyA, KeyTypeA, contents));
    return contents;
}

} // namespace

int main(int argc, char* argv[])
{
    const std::string parameters = argc > 1 ? argv[1] : "";
    Encoder encoder;
    encoder.Parameters(argc > 1 ? std::wstring(parameters.begin(), parameters.end()) : FiveCards);
    MustSucceed(encoder, encoder.OpenEncoder(HandleNumber(encoder.GetInformation())));
    std::wstring serialNumber;
    for (int card = 1; card <= CardCount; ++card) {
        serialNumber = NextCard(encoder, serialNumber);
        const std::wstring contents = Personalise(encoder, card);
        std::printf("Card %d: %ls, block %d reads %ls\n", card, serialNumber.c_str(), Block,
                    contents.c_str());
    }
    MustSucceed(encoder, encoder.CloseEncoder());
    return EXIT_SUCCESS;
}
