#include "com/BstrOwner.h"
#include "com/ComPtr.h"

#include <gmock/gmock.h>

#include <cstring>
#include <thread>

namespace
{
// Owner for the tests: cleared at its end.
struct Variant : VARIANT
{
    Variant() { VariantInit(this); }
    explicit Variant(const WCHAR *text)
    {
        V_VT(this) = VT_BSTR;
        V_BSTR(this) = SysAllocString(text);
    }
    explicit Variant(float number)
    {
        V_VT(this) = VT_R4;
        V_R4(this) = number;
    }
    Variant(VARTYPE type, LONG number)
    {
        V_VT(this) = type;
        V_I8(this) = 0;
        V_I4(this) = number;
    }
    ~Variant() { VariantClear(this); }
    Variant(const Variant &) = delete;
    Variant &operator=(const Variant &) = delete;
};

TEST(CountedStrings, CarryTheirLengthInFourBytesAheadOfTheText)
{
    const BstrOwner text(WideView(TEXT("a\0b"), 3));
    DWORD prefix = 0;
    std::memcpy(&prefix, reinterpret_cast<const BYTE *>(text.Get()) - 4, 4);
    EXPECT_EQ(6u, prefix);
    EXPECT_EQ(3u, SysStringLen(text.Get()));
    EXPECT_EQ(0, text.Get()[3]);

    const auto bytes = BstrOwner::Adopt(SysAllocStringByteLen("xyz", 3));
    EXPECT_EQ(3u, SysStringByteLen(bytes.Get()));
    EXPECT_EQ(1u, SysStringLen(bytes.Get()));
    EXPECT_EQ(0, std::memcmp(bytes.Get(), "xyz\0\0", 5));
    EXPECT_EQ(nullptr, SysAllocString(nullptr));
    EXPECT_EQ(0u, SysStringLen(nullptr));
    EXPECT_EQ(nullptr, SysAllocStringLen(nullptr, 0xFFFFFFFF));
    const auto empty = BstrOwner::Adopt(SysAllocStringLen(nullptr, 0));
    ASSERT_NE(nullptr, empty.Get());
    EXPECT_EQ(0, empty.Get()[0]);
}

TEST(CountedStrings, AreReplacedByPartsOfThemselves)
{
    BSTR text = SysAllocString(TEXT("Halvora"));
    EXPECT_EQ(TRUE, SysReAllocStringLen(&text, text + 3, 4));
    EXPECT_TRUE(WideView(text, SysStringLen(text)) == TEXT("vora"));
    EXPECT_EQ(TRUE, SysReAllocString(&text, TEXT("")));
    EXPECT_EQ(0u, SysStringLen(text));
    BstrOwner::Adopt(text);
}

TEST(CountedStrings, CompareByTheRulesOfTheLanguage)
{
    const struct
    {
        const WCHAR *left;
        const WCHAR *right;
        ULONG flags;
        HRESULT expected;
    } cases[] = {
        {TEXT("Pro"), TEXT("Pro"), 0, VARCMP_EQ},
        {nullptr, TEXT(""), 0, VARCMP_EQ},
        {nullptr, nullptr, 0, VARCMP_EQ},
        {TEXT(""), TEXT("a"), 0, VARCMP_LT},
        {TEXT("a"), nullptr, 0, VARCMP_GT},
        {TEXT("a"), TEXT("B"), 0, VARCMP_LT},
        {TEXT("pro"), TEXT("Pro"), 0, VARCMP_LT},
        {TEXT("pro"), TEXT("PRO"), NORM_IGNORECASE, VARCMP_EQ},
        {TEXT("été"), TEXT("Été"), NORM_IGNORECASE, VARCMP_EQ},
        {TEXT("Pro "), TEXT("Pro"), 0, VARCMP_GT},
    };
    for (const auto &c : cases)
    {
        const auto left = BstrOwner::Adopt(SysAllocString(c.left));
        const auto right = BstrOwner::Adopt(SysAllocString(c.right));
        EXPECT_EQ(c.expected, VarBstrCmp(left.Get(), right.Get(), 0x400, c.flags))
            << testing::PrintToString(left.View()) << " " << testing::PrintToString(right.View());
    }
}

TEST(Variants, CopiesOwnWhatTheyHold)
{
    Variant text(TEXT("text"));
    Variant copy(TEXT("old"));
    ASSERT_EQ(S_OK, VariantCopy(&copy, &text));
    EXPECT_NE(V_BSTR(&text), V_BSTR(&copy));
    EXPECT_TRUE(WideText(V_BSTR(&copy)) == TEXT("text"));
    EXPECT_EQ(S_OK, VariantCopy(&copy, &copy));
    EXPECT_EQ(S_OK, VariantClear(&copy));
    EXPECT_EQ(VT_EMPTY, V_VT(&copy));

    ComPtr<ICreateErrorInfo> object;
    ASSERT_EQ(S_OK, CreateErrorInfo(object.Put()));
    {
        Variant holder;
        V_VT(&holder) = VT_UNKNOWN;
        V_UNKNOWN(&holder) = ComPtr<IUnknown>(object).Detach();
        Variant second;
        EXPECT_EQ(S_OK, VariantCopy(&second, &holder));
    }
    object.Get()->AddRef();
    EXPECT_EQ(1u, object.Get()->Release());
    VARIANT wrong;
    V_VT(&wrong) = 77;
    EXPECT_EQ(DISP_E_BADVARTYPE, VariantClear(&wrong));
    EXPECT_EQ(DISP_E_BADVARTYPE, VariantCopy(&copy, &wrong));
}

TEST(Variants, ConvertNumbersAndTexts)
{
    const Variant empty, null(VT_NULL, 0), text(TEXT(" 42 ")), word(TEXT("word")), yes(TEXT("TRUE")),
        big(VT_UI4, -1), minus(VT_I4, -1), truth(VT_BOOL, VARIANT_TRUE), half(2.5f), more(3.5f), whole(24.0f);
    const struct
    {
        const VARIANT &source;
        VARTYPE type;
        HRESULT result;
        LONG number;
        const WCHAR *expected;
    } cases[] = {
        {empty, VT_I4, S_OK, 0},
        {empty, VT_BSTR, S_OK, 0, TEXT("")},
        {null, VT_I4, DISP_E_TYPEMISMATCH},
        {null, VT_BSTR, DISP_E_TYPEMISMATCH},
        {text, VT_I4, S_OK, 42},
        {text, VT_UI1, S_OK, 42},
        {word, VT_I4, DISP_E_TYPEMISMATCH},
        {word, VT_BOOL, DISP_E_TYPEMISMATCH},
        {yes, VT_BOOL, S_OK, 0xFFFF},
        {big, VT_BSTR, S_OK, 0, TEXT("4294967295")},
        {minus, VT_UI2, DISP_E_OVERFLOW},
        {minus, VT_BSTR, S_OK, 0, TEXT("-1")},
        {minus, VT_BOOL, S_OK, 0xFFFF},
        {truth, VT_I4, S_OK, -1},
        {truth, VT_BSTR, S_OK, 0, TEXT("-1")},
        {half, VT_I4, S_OK, 2},
        {more, VT_UI2, S_OK, 4},
        {whole, VT_BSTR, S_OK, 0, TEXT("24")},
        {minus, VT_UNKNOWN, DISP_E_TYPEMISMATCH},
        {minus, 77, DISP_E_BADVARTYPE},
    };
    for (const auto &c : cases)
    {
        Variant target(VT_I4, 7);
        EXPECT_EQ(c.result, VariantChangeType(&target, const_cast<VARIANT *>(&c.source), 0, c.type))
            << V_VT(&c.source) << " to " << c.type;
        if (FAILED(c.result))
        {
            EXPECT_EQ(VT_I4, V_VT(&target));
            EXPECT_EQ(7, V_I4(&target));
        }
        else if (c.expected)
        {
            ASSERT_EQ(VT_BSTR, V_VT(&target));
            EXPECT_TRUE(WideText(V_BSTR(&target)) == c.expected) << V_VT(&c.source);
        }
        else
        {
            const LONG mask = c.type == VT_UI1 ? 0xFF : c.type == VT_UI2 || c.type == VT_BOOL ? 0xFFFF : -1;
            EXPECT_EQ(c.type, V_VT(&target));
            EXPECT_EQ(c.number, V_I4(&target) & mask) << V_VT(&c.source) << " to " << c.type;
        }
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
