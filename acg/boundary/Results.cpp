#include "acg/boundary/Results.h"

#include "acg/boundary/Registration.h"
#include "acg/encoder/Encoder.h"

#include <ACG_MultiISO_TV.h>
#include <new>
#include <wrl/client.h>

namespace acg
{

namespace
{

using Microsoft::WRL::ComPtr;

/// Without memory there is none, only the result code.
ComPtr<IErrorInfo> ErrorInfoOf(const RaisedFailure& raised)
{
    ComPtr<ICreateErrorInfo> created;
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(CreateErrorInfo(created.GetAddressOf()))) {
        const wchar_t* const source = raised.Source ? raised.Source->c_str() : EncoderName;
        created->SetGUID(__uuidof(_Encoder)); // no other interface raises
        created->SetDescription(const_cast<LPOLESTR>(raised.Description.c_str()));
        created->SetSource(const_cast<LPOLESTR>(source));
        static_cast<void>(created.As(&info));
    }
    return info;
}

} // namespace

HRESULT ResultOfException() noexcept
{
    HRESULT result = E_UNEXPECTED;
    ComPtr<IErrorInfo> info;
    try {
        throw;
    } catch (const RaisedFailure& raised) {
        const int32_t number = raised.Number;
        result = number < 0 ? number : MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number);
        info = ErrorInfoOf(raised);
    } catch (const std::bad_alloc&) {
        result = E_OUTOFMEMORY;
    } catch (...) {
    }
    SetErrorInfo(0, info.Get()); // null clears that of an earlier call
    return result;
}

} // namespace acg
