// The parameter text: the whole of the component's configuration.
#include "encoder/Encoder.h"
#include "encoder/NumberReading.h"
#include "platform/TextCase.h"
#include "reader/HexText.h"

#include <algorithm>

namespace acg
{

namespace
{

constexpr std::wstring_view LineEnd = L"\r\n";

/// A value that doesn't fit leaves the field unchanged.
template <class Field>
void Store(std::wstring_view value, Field& field)
{
    field = ReadField<Field>(value).value_or(field);
}

} // namespace

// By value: a host may pass a text of the record, which is reset before the text is read.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void Encoder::Parameters(std::wstring Text)
{
    ResetLastError();
    const std::wstring_view separator = Text.find(LineEnd) != std::wstring::npos ? LineEnd : L";";
    std::wstring_view rest = Text;
    while (!rest.empty()) {
        const std::wstring_view entry = rest.substr(0, rest.find(separator));
        rest.remove_prefix(std::min(entry.size() + separator.size(), rest.size()));

        const std::wstring_view beforeSign = entry.substr(0, entry.find(L'='));
        const std::wstring_view value = entry.substr(std::min(beforeSign.size() + 1, entry.size()));
        const std::wstring key = ToLower(TrimBlanks(beforeSign));
        if (key == L"device") {
            m_sDevice = value;
        } else if (key == L"autodetect") {
            Store(value, m_bAutodetect);
        } else if (key == L"baud rate") {
            Store(value, m_lBaudRate);
        } else if (key == L"timeout") {
            Store(value, m_lTimeout);
        }
    }
    TraceLastError(L"Parameters");
}

std::wstring Encoder::Parameters()
{
    ResetLastError();
    std::wstring text = L"Encoding capabilities=";
    text += Capabilities;
    text += L"\r\nDevice=" + m_sDevice;
    text += L"\r\nAutodetect=" + DecimalText(m_bAutodetect);
    text += L"\r\nBaud rate=" + DecimalText(m_lBaudRate);
    text += L"\r\nTimeout=" + DecimalText(m_lTimeout);
    ResetLastError(L"Parameters");
    return text;
}

} // namespace acg
