// Waiting for cards that come and go, with the processor left to others.
#pragma once

#include "tool/CardSession.h"

namespace acg::tool
{

/// Until a card lies alone in the field, whichever it is: the session's first card from then on. Throws
/// Interruption after Ctrl-C, and CardFailure if the reader fails.
void WaitForCard(CardSession& card);

/// Until the session's card has left the field, or another one lies there. Throws as WaitForCard does.
void WaitUntilGone(CardSession& card);

/// The failure of an operation means that no card can be selected now.
[[nodiscard]] bool MeansNoCard(const CError& record);

} // namespace acg::tool
