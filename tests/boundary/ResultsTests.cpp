// What becomes of an exception on its way out.
#include "boundary/Results.h"
#include "encoder/Encoder.h"

#include <gtest/gtest.h>

#include <new>
#include <oleauto.h>
#include <stdexcept>

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
             throw RaisedFailure{-1, L"closed", {}};
         },
         static_cast<HRESULT>(0xFFFFFFFF), S_OK},
        {[]() -> HRESULT {
             throw RaisedFailure{453, L"no entry point", L""};
         },
         static_cast<HRESULT>(0x800A01C5), S_OK},
        {[] { return DISP_E_BADINDEX; }, DISP_E_BADINDEX, S_FALSE},
        {[]() -> HRESULT { throw std::bad_alloc(); }, E_OUTOFMEMORY, S_FALSE},
        {[]() -> HRESULT { throw std::length_error("too long"); }, E_UNEXPECTED, S_FALSE},
        {[]() -> HRESULT { throw 1; }, E_UNEXPECTED, S_FALSE},
    };
    for (const auto& [run, result, information] : cases) {
        // What an earlier call has left is never taken for this one's.
        ICreateErrorInfo* created = nullptr;
        IErrorInfo* info = nullptr;
        ASSERT_EQ(CreateErrorInfo(&created), S_OK);
        ASSERT_EQ(created->QueryInterface(__uuidof(IErrorInfo), reinterpret_cast<void**>(&info)), S_OK);
        SetErrorInfo(0, info);
        info->Release();
        created->Release();

        EXPECT_EQ(Guarded(run), result);
        IErrorInfo* left = nullptr;
        EXPECT_EQ(GetErrorInfo(0, &left), information);
        EXPECT_NE(left, info);
        if (left != nullptr) {
            left->Release();
        }
    }
}

} // namespace

} // namespace acg
