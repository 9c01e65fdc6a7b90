// The class CError of the type library.
#pragma once

#include "boundary/AutomationObject.h"
#include "encoder/CError.h"

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
    explicit AutomationError(std::shared_ptr<CError> Record) : m_record(std::move(Record)) {}

    HRESULT STDMETHODCALLTYPE get_Number(LONG* Result) override { return Get(Result, &CError::Number); }
    HRESULT STDMETHODCALLTYPE put_Number(LONG Value) override { return Put(&CError::Number, Value); }
    HRESULT STDMETHODCALLTYPE get_Description(BSTR* Result) override
    {
        return Get(Result, &CError::Description);
    }
    HRESULT STDMETHODCALLTYPE put_Description(BSTR Value) override
    {
        return Put(&CError::Description, TextOf(Value));
    }
    HRESULT STDMETHODCALLTYPE get_LastDllError(LONG* Result) override
    {
        return Get(Result, &CError::LastDllError);
    }
    HRESULT STDMETHODCALLTYPE put_LastDllError(LONG Value) override
    {
        return Put(&CError::LastDllError, Value);
    }
    HRESULT STDMETHODCALLTYPE get_ComFunction(BSTR* Result) override
    {
        return Get(Result, &CError::ComFunction);
    }
    HRESULT STDMETHODCALLTYPE put_ComFunction(BSTR Value) override
    {
        return Put(&CError::ComFunction, TextOf(Value));
    }
    HRESULT STDMETHODCALLTYPE get_RdrCommand(BSTR* Result) override
    {
        return Get(Result, &CError::RdrCommand);
    }
    HRESULT STDMETHODCALLTYPE put_RdrCommand(BSTR Value) override
    {
        return Put(&CError::RdrCommand, TextOf(Value));
    }
    HRESULT STDMETHODCALLTYPE get_RdrRetCode(BSTR* Result) override
    {
        return Get(Result, &CError::RdrRetCode);
    }
    HRESULT STDMETHODCALLTYPE put_RdrRetCode(BSTR Value) override
    {
        return Put(&CError::RdrRetCode, TextOf(Value));
    }

private:
    template <class Callers, class Field>
    HRESULT Get(Callers* Result, Field CError::*Wanted)
    {
        return Answer(Result, [&]() -> const Field& { return (*m_record).*Wanted; });
    }
    template <class Field, class Value>
    HRESULT Put(Field CError::*Changed, Value NewValue)
    {
        return Run([&] { (*m_record).*Changed = NewValue; });
    }

    const std::shared_ptr<CError> m_record;
};

} // namespace acg
