#include "tool/CardWait.h"

#include "acg/encoder/Failures.h"
#include "tool/System.h"

#include <chrono>

namespace acg::tool
{

namespace
{

constexpr std::chrono::milliseconds PollInterval{100};

} // namespace

bool MeansNoCard(const CError& record)
{
    // N: the card has left; C: several cards.
    return record.Number == NoCardInEncoder.Number || record.RdrRetCode == L"N" || record.RdrRetCode == L"C";
}

void WaitForCard(CardSession& card)
{
    card.ForgetCard();
    for (;; Pause(PollInterval)) {
        try {
            card.Select();
            return;
        } catch (const CardFailure& failure) {
            if (!MeansNoCard(failure.Record)) {
                throw;
            }
        }
    }
}

void WaitUntilGone(CardSession& card)
{
    try {
        for (;; Pause(PollInterval)) {
            card.Select();
        }
    } catch (const AnotherCard&) {
    } catch (const CardFailure& failure) {
        if (!MeansNoCard(failure.Record)) {
            throw;
        }
    }
}

} // namespace acg::tool
