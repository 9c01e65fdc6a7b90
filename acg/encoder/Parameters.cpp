// The parameter text: the whole of the component's configuration.
#include "acg/encoder/Parameters.h"

#include "acg/encoder/Encoder.h"
#include "acg/encoder/NumberReading.h"
#include "acg/platform/HexText.h"
#include "acg/platform/TextCase.h"

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

ParameterEntries::ParameterEntries(std::wstring_view text)
    : m_separator(text.find(LineEnd) != std::wstring_view::npos ? LineEnd : L";"), m_rest(text)
{
}

bool ParameterEntries::Next()
{
    if (m_rest.empty()) {
        return false;
    }
    const std::wstring_view entry = m_rest.substr(0, m_rest.find(m_separator));
    m_rest.remove_prefix(std::min(entry.size() + m_separator.size(), m_rest.size()));

    const size_t sign = entry.find(L'=');
    Key = ToLower(TrimBlanks(entry.substr(0, sign)));
    Value.reset();
    if (sign != std::wstring_view::npos) {
        Value = entry.substr(sign + 1);
    }
    return true;
}

// By value: a host may pass a text of the record, which is reset before the text is read.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void Encoder::Parameters(std::wstring text)
{
    ResetLastError();
    for (ParameterEntries entry(text); entry.Next();) {
        const std::wstring& key = entry.Key;
        const std::wstring_view value = entry.Value.value_or(L"");
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
