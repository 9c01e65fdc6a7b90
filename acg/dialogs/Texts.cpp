#include "acg/dialogs/Texts.h"

#include "acg/encoder/NumberReading.h"
#include "acg/platform/TextCase.h"

namespace acg
{

bool IsFrench(std::wstring_view language)
{
    return ToLower(language) == L"francais";
}

std::wstring Fill(std::wstring text, std::initializer_list<std::wstring_view> values)
{
    int number = 0;
    for (const std::wstring_view value : values) {
        const std::wstring placeholder = L"%" + DecimalText(++number);
        for (size_t at = 0; (at = text.find(placeholder, at)) != std::wstring::npos; at += value.size()) {
            text.replace(at, placeholder.size(), value);
        }
    }
    return text;
}

} // namespace acg
