// The class CError of the type library.
#pragma once

#include "acg/boundary/AutomationObject.h"
#include "acg/encoder/CError.h"

#include <ACG_MultiISO_TV.h>
#include <memory>
#include <utility>

namespace acg
{

/// A record as hosts see it: its fields, and nothing else.
class AutomationError final : public AutomationObject<::CError, _CError>
{
public:
    AutomationError() : AutomationError(std::make_shared<CError>()) {}
    explicit AutomationError(std::shared_ptr<CError> record) : m_record(std::move(record)) {}

    STDMETHODIMP get_Number(LONG* Value) override { return Get(&CError::Number, Value); }
    STDMETHODIMP put_Number(LONG Value) override { return Put(&CError::Number, Value); }
    STDMETHODIMP get_Description(BSTR* Value) override { return Get(&CError::Description, Value); }
    STDMETHODIMP put_Description(BSTR Value) override { return Put(&CError::Description, Value); }
    STDMETHODIMP get_LastDllError(LONG* Value) override { return Get(&CError::LastDllError, Value); }
    STDMETHODIMP put_LastDllError(LONG Value) override { return Put(&CError::LastDllError, Value); }
    STDMETHODIMP get_ComFunction(BSTR* Value) override { return Get(&CError::ComFunction, Value); }
    STDMETHODIMP put_ComFunction(BSTR Value) override { return Put(&CError::ComFunction, Value); }
    STDMETHODIMP get_RdrCommand(BSTR* Value) override { return Get(&CError::RdrCommand, Value); }
    STDMETHODIMP put_RdrCommand(BSTR Value) override { return Put(&CError::RdrCommand, Value); }
    STDMETHODIMP get_RdrRetCode(BSTR* Value) override { return Get(&CError::RdrRetCode, Value); }
    STDMETHODIMP put_RdrRetCode(BSTR Value) override { return Put(&CError::RdrRetCode, Value); }

private:
    template <class Field, class Callers>
    HRESULT Get(Field CError::*field, Callers* result)
    {
        return CallWithResult(result, [&]() -> const Field& { return (*m_record).*field; });
    }
    HRESULT Put(int32_t CError::*field, LONG value)
    {
        return Run([&] { (*m_record).*field = value; });
    }
    HRESULT Put(std::wstring CError::*field, BSTR value)
    {
        return Run([&] { (*m_record).*field = ViewOf(value); });
    }

    const std::shared_ptr<CError> m_record;
};

} // namespace acg
