#include "acg/boundary/Arguments.h"

#include <new>
#include <utility>

namespace acg
{

BSTR NewText(std::wstring_view text)
{
    const BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

void InOut<BSTR>::CopyBack()
{
    const BSTR text = NewText(Copy);
    Wipe(m_variable, SysStringByteLen(m_variable));
    SysFreeString(m_variable);
    m_variable = text;
}

OwnVariant::~OwnVariant()
{
    if (V_VT(this) == VT_BSTR) {
        Wipe(V_BSTR(this), SysStringByteLen(V_BSTR(this)));
    }
    VariantClear(this);
}

HRESULT OwnVariant::Convert(const VARIANT& from, VARTYPE type, LCID language)
{
    OwnVariant converted;
    const bool isText = (V_VT(&from) & ~VT_BYREF) == VT_BSTR;
    if (isText && type == VT_BSTR) { // the system would copy it twice, and not wipe the first
        V_BSTR(&converted) = NewText(ViewOf(V_ISBYREF(&from) ? *V_BSTRREF(&from) : V_BSTR(&from)));
        V_VT(&converted) = VT_BSTR;
    } else {
        const HRESULT result =
            VariantChangeTypeEx(&converted, const_cast<VARIANT*>(&from), language, 0, type);
        if (FAILED(result)) {
            const bool isTelling = result == DISP_E_OVERFLOW || result == E_OUTOFMEMORY;
            return isTelling ? result : DISP_E_TYPEMISMATCH;
        }
    }
    std::swap<VARIANT>(*this, converted);
    return S_OK;
}

HRESULT Dereference(VARIANT*& value)
{
    for (int depth = 0; depth < 2 && V_VT(value) == VariantReference; ++depth) {
        value = V_VARIANTREF(value);
        if (value == nullptr) {
            return E_POINTER;
        }
    }
    if (V_VT(value) == VariantReference) {
        return DISP_E_TYPEMISMATCH;
    }
    return V_ISBYREF(value) && V_BYREF(value) == nullptr ? E_POINTER : S_OK;
}

std::optional<int32_t> ConvertToByte(VARIANT* value)
{
    if (value == nullptr) {
        return std::nullopt;
    }
    HRESULT result = Dereference(value);
    OwnVariant converted;
    if (SUCCEEDED(result)) {
        if (IsLeftOut(*value)) {
            return std::nullopt;
        }
        result = converted.Convert(*value, VT_UI1, LOCALE_USER_DEFAULT);
    }
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    return SUCCEEDED(result) ? V_UI1(&converted) : NoByte;
}

} // namespace acg
