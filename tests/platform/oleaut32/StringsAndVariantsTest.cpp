#include "com/BstrOwner.h"
#include "com/ComPtr.h"

#include <gmock/gmock.h>

#include <cstring>
#include <thread>

namespace
{
TEST(CountedStrings, CarryTheirLengthInFourBytesAheadOfTheText)
{
    const BstrOwner text(WideView(TEXT("a\0b"), 3));
    DWORD prefix = 0;
    std::memcpy(&prefix, reinterpret_cast<const BYTE *>(text.Get()) - 4, 4);
    EXPECT_EQ(6u, prefix);
    EXPECT_EQ(3u, SysStringLen(text.Get()));
    EXPECT_EQ(0, text.Get()[3]);
    EXPECT_EQ(0u, SysStringLen(nullptr));
    EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, 0xFFFFFFFF));
    const auto empty = BstrOwner::Adopt(SysAllocStringLen(nullptr, 0));
    ASSERT_NE(nullptr, empty.Get());
    EXPECT_EQ(0, empty.Get()[0]);
}

TEST(Arrays, StayWhileTheirDataIsInUse)
{
    VARIANT value;
    V_VT(&value) = VT_ARRAY | VT_UI1;
    V_ARRAY(&value) = SafeArrayCreateVector(VT_UI1, 5, 3);
    ASSERT_NE(V_ARRAY(&value), nullptr);
    LONG low = 0, high = 0;
    EXPECT_EQ(SafeArrayGetLBound(V_ARRAY(&value), 1, &low), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(V_ARRAY(&value), 1, &high), S_OK);
    EXPECT_EQ(low, 5);
    EXPECT_EQ(high, 7);
    void *data = nullptr;
    EXPECT_EQ(SafeArrayAccessData(V_ARRAY(&value), &data), S_OK);
    EXPECT_EQ(VariantClear(&value), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(SafeArrayUnaccessData(V_ARRAY(&value)), S_OK);
    EXPECT_EQ(VariantClear(&value), S_OK);
    EXPECT_EQ(V_VT(&value), VT_EMPTY);
}

TEST(Variants, LetGoOfTheirObject)
{
    ComPtr<ICreateErrorInfo> object;
    ASSERT_EQ(S_OK, CreateErrorInfo(object.Put()));
    VARIANT holder;
    V_VT(&holder) = VT_UNKNOWN;
    V_UNKNOWN(&holder) = ComPtr<IUnknown>(object).Detach();
    EXPECT_EQ(VariantClear(&holder), S_OK);
    object.Get()->AddRef();
    EXPECT_EQ(1u, object.Get()->Release());
}

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

TEST(ErrorObjects, BelongToOneThreadAndAreHandedOutOnce)
{
    ComPtr<ICreateErrorInfo> made;
    ASSERT_EQ(S_OK, CreateErrorInfo(made.Put()));
    WCHAR text[] = TEXT("What went wrong");
    EXPECT_EQ(S_OK, made->SetDescription(text));
    EXPECT_EQ(S_OK, made->SetGUID(GUID{}));
    const auto asError = made.As<IErrorInfo>();
    ASSERT_TRUE(asError);
    ASSERT_EQ(S_OK, SetErrorInfo(0, asError.Get()));
    HRESULT elsewhere = E_FAIL;
    std::thread([&] {
        ComPtr<IErrorInfo> none;
        elsewhere = GetErrorInfo(0, none.Put());
    }).join();
    EXPECT_EQ(S_FALSE, elsewhere);
    ComPtr<IErrorInfo> error;
    ASSERT_EQ(S_OK, GetErrorInfo(0, error.Put()));
    BstrOwner description;
    EXPECT_EQ(S_OK, error->GetDescription(description.Put()));
    EXPECT_TRUE(description.View() == TEXT("What went wrong"));
    EXPECT_EQ(S_FALSE, GetErrorInfo(0, error.Put()));
    EXPECT_FALSE(error);
}
} // namespace
