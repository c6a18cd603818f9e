#include "com/BstrOwner.h"

#include <gtest/gtest.h>

namespace
{
TEST(Variants, ConvertTextsToWholeNumbers)
{
    const struct
    {
        const WCHAR *text;
        VARTYPE type;
        HRESULT result;
        INT64 number = 7; // as before, after a failure
    } cases[] = {
        {TEXT(" 42 "), VT_I4, S_OK, 42},
        {TEXT("-2147483648"), VT_I4, S_OK, INT32_MIN},
        {TEXT("2147483648"), VT_I4, DISP_E_OVERFLOW},
        {TEXT("1e3"), VT_I4, S_OK, 1000},
        {TEXT("25e-1"), VT_I4, S_OK, 2},
        {TEXT("35e-1"), VT_I4, S_OK, 4},
        {TEXT("word"), VT_I4, DISP_E_TYPEMISMATCH},
        {TEXT("4294967295"), VT_UI4, S_OK, 4294967295},
        {TEXT("-1"), VT_UI4, DISP_E_OVERFLOW},
        {TEXT("+9007199254740993"), VT_I8, S_OK, 9007199254740993},
        {TEXT("-9223372036854775808"), VT_I8, S_OK, INT64_MIN},
        {TEXT("9223372036854775808"), VT_I8, DISP_E_OVERFLOW},
        {TEXT(""), VT_I8, DISP_E_TYPEMISMATCH},
    };
    for (const auto &c : cases)
    {
        const BstrOwner text{WideView(c.text)};
        VARIANT source, target;
        V_VT(&source) = VT_BSTR;
        V_BSTR(&source) = text.Get();
        V_VT(&target) = VT_I8;
        V_I8(&target) = 7;
        EXPECT_EQ(VariantChangeType(&target, &source, 0, c.type), c.result) << testing::PrintToString(c.text);
        EXPECT_EQ(V_VT(&target), SUCCEEDED(c.result) ? c.type : VARTYPE{VT_I8});
        EXPECT_EQ(V_VT(&target) == VT_I4    ? V_I4(&target)
                  : V_VT(&target) == VT_UI4 ? V_UI4(&target)
                                            : V_I8(&target),
                  c.number);
    }
}
} // namespace
