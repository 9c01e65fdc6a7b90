#include "acg/boundary/Arguments.h"

#include <new>
#include <utility>

namespace acg
{

BSTR NewText(std::wstring_view Text)
{
    const BSTR text = SysAllocStringLen(Text.data(), static_cast<UINT>(Text.size()));
    if (text == nullptr) {
        throw std::bad_alloc();
    }
    return text;
}

void Variable<BSTR>::GiveBack()
{
    const BSTR text = NewText(Copy);
    Wipe(m_ofCaller, SysStringByteLen(m_ofCaller));
    SysFreeString(m_ofCaller);
    m_ofCaller = text;
}

OwnVariant::~OwnVariant()
{
    if (V_VT(this) == VT_BSTR) {
        Wipe(V_BSTR(this), SysStringByteLen(V_BSTR(this)));
    }
    VariantClear(this);
}

HRESULT OwnVariant::Convert(const VARIANT& From, VARTYPE Type, LCID Language)
{
    OwnVariant converted;
    const bool isText = (V_VT(&From) & ~VT_BYREF) == VT_BSTR;
    if (isText && Type == VT_BSTR) { // the system would copy it twice, and not wipe the first
        V_BSTR(&converted) = NewText(TextOf(V_ISBYREF(&From) ? *V_BSTRREF(&From) : V_BSTR(&From)));
        V_VT(&converted) = VT_BSTR;
    } else {
        const HRESULT result =
            VariantChangeTypeEx(&converted, const_cast<VARIANT*>(&From), Language, 0, Type);
        if (FAILED(result)) {
            const bool isTelling = result == DISP_E_OVERFLOW || result == E_OUTOFMEMORY;
            return isTelling ? result : DISP_E_TYPEMISMATCH;
        }
    }
    std::swap<VARIANT>(*this, converted);
    return S_OK;
}

HRESULT Follow(VARIANT*& Value)
{
    for (int depth = 0; depth < 2 && V_VT(Value) == VariantReference; ++depth) {
        Value = V_VARIANTREF(Value);
        if (Value == nullptr) {
            return E_POINTER;
        }
    }
    if (V_VT(Value) == VariantReference) {
        return DISP_E_TYPEMISMATCH;
    }
    return V_ISBYREF(Value) && V_BYREF(Value) == nullptr ? E_POINTER : S_OK;
}

std::optional<int32_t> ConvertToByte(VARIANT* Value)
{
    if (Value == nullptr) {
        return std::nullopt;
    }
    HRESULT result = Follow(Value);
    OwnVariant converted;
    if (SUCCEEDED(result)) {
        if (IsLeftOut(*Value)) {
            return std::nullopt;
        }
        result = converted.Convert(*Value, VT_UI1, LOCALE_USER_DEFAULT);
    }
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    return SUCCEEDED(result) ? V_UI1(&converted) : NoByte;
}

} // namespace acg
