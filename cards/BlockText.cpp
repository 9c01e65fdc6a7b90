#include "cards/BlockText.h"

#include "platform/Secret.h"

#include <utility>

namespace acg
{

void StoreInHostText(std::wstring& HostText, std::wstring_view Text)
{
    if (HostText.capacity() < BlockDigits) {
        std::wstring roomy;
        roomy.reserve(BlockDigits);
        HostText.swap(roomy);
        const SecretText outgrown(std::move(roomy));
    }
    HostText = Text;
}

} // namespace acg
