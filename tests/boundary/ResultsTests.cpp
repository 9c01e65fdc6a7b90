// What becomes of an exception on its way out.
#include "boundary/Results.h"
#include "encoder/Encoder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <wrl/client.h>

namespace acg
{

namespace
{

TEST(ResultsTest, EveryExceptionHasItsResultAndOnlyARaisedFailureItsInformation)
{
    const struct {
        HRESULT (*Run)();
        HRESULT Result;
        HRESULT Information; ///< S_FALSE for none
    } cases[] = {
        {[]() -> HRESULT {
             throw RaisedFailure{453, L"no entry point", L""};
         },
         HRESULT(0x800A01C5), S_OK},
        {[] { return DISP_E_BADINDEX; }, DISP_E_BADINDEX, S_FALSE},
        {[]() -> HRESULT { throw std::length_error("too long"); }, E_UNEXPECTED, S_FALSE},
    };
    for (const auto& [run, result, information] : cases) {
        // What an earlier call has left is never taken for this one's.
        Microsoft::WRL::ComPtr<ICreateErrorInfo> created;
        Microsoft::WRL::ComPtr<IErrorInfo> before;
        Microsoft::WRL::ComPtr<IErrorInfo> left;
        ASSERT_EQ(CreateErrorInfo(created.GetAddressOf()), S_OK);
        ASSERT_EQ(created.As(&before), S_OK);
        SetErrorInfo(0, before.Get());
        EXPECT_EQ(Guarded(run), result);
        EXPECT_EQ(GetErrorInfo(0, left.GetAddressOf()), information);
        EXPECT_NE(left.Get(), before.Get());
    }
}

} // namespace

} // namespace acg
