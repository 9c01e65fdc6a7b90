#include "boundary/Arguments.h"

#include <algorithm>
#include <new>
#include <utility>

namespace acg
{

namespace
{

bool Succeeded(HRESULT result)
{
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    return SUCCEEDED(result);
}

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

Variant::~Variant()
{
    if (V_VT(this) == VT_BSTR) {
        Wipe(V_BSTR(this), SysStringLen(V_BSTR(this)));
    }
    VariantClear(this);
}

bool Variant::Convert(VARIANT& From, VARTYPE Type)
{
    if (V_ISBYREF(&From) && V_BYREF(&From) == nullptr) {
        return false;
    }
    Variant converted;
    const bool isText = V_VT(&From) == VT_BSTR || V_VT(&From) == (VT_BYREF | VT_BSTR);
    if (isText && Type == VT_BSTR) { // the system would copy it twice, and not wipe the first
        V_BSTR(&converted) = NewText(TextOf(V_ISBYREF(&From) ? *V_BSTRREF(&From) : V_BSTR(&From)));
        V_VT(&converted) = VT_BSTR;
    } else if (!Succeeded(VariantChangeType(&converted, &From, 0, Type))) {
        return false;
    }
    std::swap<VARIANT>(*this, converted);
    return true;
}

bool IsLeftOut(const VARIANT& Value)
{
    return V_VT(&Value) == VT_ERROR && V_ERROR(&Value) == DISP_E_PARAMNOTFOUND;
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
    return copy.Convert(copy, VT_UI1) ? V_UI1(&copy) : NoByte;
}

} // namespace acg
