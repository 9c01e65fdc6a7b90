#include "boundary/Arguments.h"

#include <algorithm>
#include <new>

namespace acg
{

namespace
{

bool IsLeftOut(const VARIANT& value)
{
    return V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND;
}

bool Succeeded(HRESULT result)
{
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    return SUCCEEDED(result);
}

/// A variant of our own.
struct Variant : VARIANT {
    Variant() { VariantInit(this); }
    ~Variant() { VariantClear(this); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
};

} // namespace

BSTR NewText(std::wstring_view Text)
{
    const BSTR text = SysAllocStringLen(Text.data(), static_cast<UINT>(Text.size()));
    if (text == nullptr) {
        throw std::bad_alloc();
    }
    return text;
}

TextVariable::TextVariable(BSTR* Variable, Incoming Text) : m_variable(Given(Variable))
{
    const std::wstring_view incoming = Text == Incoming::Read ? TextOf(m_variable) : std::wstring_view();
    m_text.Reserve(std::max<size_t>(incoming.size(), BlockDigits));
    m_text += incoming;
}

void TextVariable::GiveBack()
{
    const BSTR text = NewText(m_text);
    Wipe(m_variable, SysStringLen(m_variable));
    SysFreeString(m_variable);
    m_variable = text;
}

std::optional<int32_t> ByteOf(VARIANT* Value)
{
    if (Value == nullptr) {
        return std::nullopt;
    }
    Variant copy;
    if (!Succeeded(VariantCopyInd(&copy, Value))) {
        return NoByte;
    }
    if (IsLeftOut(copy)) {
        return std::nullopt;
    }
    return Succeeded(VariantChangeType(&copy, &copy, 0, VT_UI1)) ? V_UI1(&copy) : NoByte;
}

} // namespace acg
