#include "com/BstrOwner.h"

#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

namespace
{
TEST(SafeArrays, AreVectorsWithBounds)
{
    SAFEARRAY *const array = SafeArrayCreateVector(VT_UI1, 5, 3);
    ASSERT_NE(array, nullptr);
    VARTYPE type = VT_EMPTY;
    LONG low = 0, high = 0;
    EXPECT_EQ(SafeArrayGetDim(array), 1u);
    EXPECT_EQ(SafeArrayGetVartype(array, &type), S_OK);
    EXPECT_EQ(type, VT_UI1);
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &low), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &high), S_OK);
    EXPECT_EQ(low, 5);
    EXPECT_EQ(high, 7);
    EXPECT_EQ(SafeArrayGetUBound(array, 2, &high), DISP_E_BADINDEX);
    EXPECT_EQ(SafeArrayGetLBound(nullptr, 1, &low), E_INVALIDARG);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
    EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
}

TEST(SafeArrays, StayWhileTheirDataIsInUse)
{
    VARIANT value;
    V_VT(&value) = VT_ARRAY | VT_UI1;
    V_ARRAY(&value) = SafeArrayCreateVector(VT_UI1, 0, 0);
    ASSERT_NE(V_ARRAY(&value), nullptr);
    void *data = nullptr;
    EXPECT_EQ(SafeArrayAccessData(V_ARRAY(&value), &data), S_OK);
    EXPECT_EQ(SafeArrayDestroy(V_ARRAY(&value)), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnaccessData(V_ARRAY(&value)), S_OK);
    EXPECT_EQ(SafeArrayUnaccessData(V_ARRAY(&value)), E_UNEXPECTED);
    EXPECT_EQ(SafeArrayAccessData(V_ARRAY(&value), nullptr), E_INVALIDARG);
    EXPECT_EQ(VariantClear(&value), S_OK);
    EXPECT_EQ(V_VT(&value), VT_EMPTY);
}

TEST(Variants, ConvertTextsToNumbersOf64Bits)
{
    const struct
    {
        const WCHAR *text;
        HRESULT result;
        INT64 number;
    } cases[] = {
        {TEXT("0"), S_OK, 0},
        {TEXT(" -5 "), S_OK, -5},
        {TEXT("+9007199254740993"), S_OK, 9007199254740993},
        {TEXT("-9223372036854775808"), S_OK, INT64_MIN},
        {TEXT("9223372036854775808"), DISP_E_OVERFLOW, 0},
        {TEXT("1e3"), S_OK, 1000},
        {TEXT("soon"), DISP_E_TYPEMISMATCH, 0},
        {TEXT(""), DISP_E_TYPEMISMATCH, 0},
    };
    for (const auto &c : cases)
    {
        const BstrOwner text{WideView(c.text)};
        VARIANT source, target;
        V_VT(&source) = VT_BSTR;
        V_BSTR(&source) = text.Get();
        VariantInit(&target);
        EXPECT_EQ(VariantChangeType(&target, &source, 0, VT_I8), c.result)
            << testing::PrintToString(WideText(c.text));
        if (SUCCEEDED(c.result))
        {
            EXPECT_EQ(V_I8(&target), c.number);
        }
    }
}
} // namespace
