#include "cards/BlockText.h"

#include "platform/AnsiText.h"

namespace acg
{

void StoreReply(std::wstring& HostText, std::string_view Reply)
{
    MakeRoom(HostText, BlockDigits);
    ReplaceByAnsi(HostText, Reply, /*Most=*/BlockDigits);
    HostText.resize(BlockDigits, L'0');
}

} // namespace acg
