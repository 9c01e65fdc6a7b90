#include "acg/dialogs/Texts.h"

#include "acg/encoder/NumberReading.h"
#include "acg/platform/TextCase.h"

namespace acg
{

bool IsFrench(std::wstring_view Language)
{
    return ToLower(Language) == L"francais";
}

std::wstring Fill(std::wstring Text, std::initializer_list<std::wstring_view> Values)
{
    int number = 0;
    for (const std::wstring_view value : Values) {
        const std::wstring placeholder = L"%" + DecimalText(++number);
        for (size_t at = 0; (at = Text.find(placeholder, at)) != std::wstring::npos; at += value.size()) {
            Text.replace(at, placeholder.size(), value);
        }
    }
    return Text;
}

} // namespace acg
