// GetNumberFormatW with the caller's own format: the locale decides nothing but the sign.
#include "com/WideText.h"
#include "tests/platform/KnownGaps.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace
{
constexpr LCID English = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);

struct Form
{
    UINT decimals = 0;
    UINT leadingZero = 1;
    UINT grouping = 3;
    UINT negativeOrder = 1;
};

NUMBERFMTW Build(const Form &form)
{
    static WCHAR point[] = {'.', 0};
    static WCHAR comma[] = {',', 0};
    return {form.decimals, form.leadingZero, form.grouping, point, comma, form.negativeOrder};
}

WideText Format(const WCHAR *value, const Form &form)
{
    const NUMBERFMTW format = Build(form);
    WCHAR text[128];
    return GetNumberFormatW(English, 0, value, &format, text, ARRAYSIZE(text)) > 0 ? text : TEXT("failed");
}

TEST(NumberFormat, GroupsFromTheRight)
{
    EXPECT_EQ(Format(TEXT("0"), {}), TEXT("0"));
    EXPECT_EQ(Format(TEXT("999"), {}), TEXT("999"));
    EXPECT_EQ(Format(TEXT("1000"), {}), TEXT("1,000"));
    EXPECT_EQ(Format(TEXT("9223372036854775807"), {}), TEXT("9,223,372,036,854,775,807"));
    EXPECT_EQ(Format(TEXT("1234567"), {.grouping = 0}), TEXT("1234567"));
    EXPECT_EQ(Format(TEXT("123456789"), {.grouping = 32}), TEXT("12,34,56,789"));
    EXPECT_EQ(Format(TEXT("1234567"), {.grouping = 4}), TEXT("123,4567"));
}

TEST(NumberFormat, RoundsHalvesAwayFromZeroOnTheText)
{
    EXPECT_EQ(Format(TEXT("2.5"), {}), TEXT("3"));
    EXPECT_EQ(Format(TEXT("-2.5"), {}), TEXT("-3"));
    EXPECT_EQ(Format(TEXT("2.4999"), {}), TEXT("2"));
    EXPECT_EQ(Format(TEXT("1999.995"), {.decimals = 2}), TEXT("2,000.00"));
    // A digit that rounding adds must be grouped like the others; Wine doesn't do that.
    EXPECT_EQ(Format(TEXT("999.995"), {.decimals = 2}), UnderWine ? TEXT("1000.00") : TEXT("1,000.00"));
    EXPECT_EQ(Format(TEXT("0.05"), {.decimals = 1}), TEXT("0.1"));
    EXPECT_EQ(Format(TEXT("1.5"), {.decimals = 3}), TEXT("1.500"));
    EXPECT_EQ(Format(TEXT("1"), {.decimals = 1}), TEXT("1.0"));
    EXPECT_EQ(Format(TEXT("0.1"), {.decimals = 9}), TEXT("0.100000000"));
}

TEST(NumberFormat, LeadingZeros)
{
    EXPECT_EQ(Format(TEXT("007"), {}), TEXT("7"));
    EXPECT_EQ(Format(TEXT("0.5"), {.decimals = 1, .leadingZero = 0}), TEXT(".5"));
    EXPECT_EQ(Format(TEXT(".5"), {.decimals = 1, .leadingZero = 1}), TEXT("0.5"));
}

TEST(NumberFormat, NegativeOrders)
{
    const WCHAR *const expected[] = {TEXT("(1.1)"), TEXT("-1.1"), TEXT("- 1.1"), TEXT("1.1-"), TEXT("1.1 -")};
    for (UINT order = 0; order < ARRAYSIZE(expected); ++order)
    {
        EXPECT_EQ(Format(TEXT("-1.1"), {.decimals = 1, .negativeOrder = order}), expected[order]);
    }
}

TEST(NumberFormat, RefusesWhatIsNoNumberOrNoFormat)
{
    for (const WCHAR *value : {TEXT("1,000"), TEXT(" 1"), TEXT("1.2.3"), TEXT("1-"), TEXT("+1"), TEXT("1e5")})
    {
        SetLastError(0);
        EXPECT_EQ(Format(value, {}), TEXT("failed")) << WideText(value).size();
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    }
    for (const Form &form : {Form{.leadingZero = 2}, Form{.negativeOrder = 5}})
    {
        // Wine accepts any number in these two fields.
        EXPECT_EQ(Format(TEXT("1"), form), UnderWine ? TEXT("1") : TEXT("failed"));
    }
    NUMBERFMTW format = Build({});
    format.lpThousandSep = nullptr;
    WCHAR text[32];
    EXPECT_EQ(GetNumberFormatW(English, 0, TEXT("1"), &format, text, 32), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    format = Build({});
    EXPECT_EQ(GetNumberFormatW(English, LOCALE_NOUSEROVERRIDE, TEXT("1"), &format, text, 32), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
}

TEST(NumberFormat, SizeQueriesAndSmallBuffers)
{
    const NUMBERFMTW format = Build({});
    EXPECT_EQ(GetNumberFormatW(English, 0, TEXT("1000"), &format, nullptr, 0), 6);
    WCHAR text[6];
    EXPECT_EQ(GetNumberFormatW(English, 0, TEXT("1000"), &format, text, 6), 6);
    SetLastError(0);
    EXPECT_EQ(GetNumberFormatW(English, 0, TEXT("1000"), &format, text, 5), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}
} // namespace
