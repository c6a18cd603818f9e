// GetNumberFormatW with the caller's own format: the locale decides nothing but the sign.
#include "com/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>

TEST(NumberFormat, GroupsFromTheRightAndPlacesTheSign)
{
    const struct
    {
        const WCHAR *value;
        const WCHAR *text;
        UINT decimals = 0;
        UINT grouping = 3;
        UINT negativeOrder = 1;
    } cases[] = {
        {TEXT("0"), TEXT("0")},
        {TEXT("999"), TEXT("999")},
        {TEXT("1000"), TEXT("1,000")},
        {TEXT("9223372036854775807"), TEXT("9,223,372,036,854,775,807")},
        {TEXT("1234567"), TEXT("1234567"), 0, 0},
        {TEXT("123456789"), TEXT("12,34,56,789"), 0, 32},
        {TEXT("1234567"), TEXT("123,4567"), 0, 4},
        {TEXT("-1234.5"), TEXT("-1,234.5"), 1},
        {TEXT("-1.1"), TEXT("1.1-"), 1, 3, 3},
        {TEXT("1,000"), TEXT("failed")},
        {TEXT(" 1"), TEXT("failed")},
        {TEXT("1-"), TEXT("failed")},
        {TEXT("1.2.3"), TEXT("failed"), 1},
    };
    constexpr LCID English = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);
    WCHAR point[] = TEXT(".");
    WCHAR comma[] = TEXT(",");
    for (const auto &c : cases)
    {
        const NUMBERFMTW format = {c.decimals, 1, c.grouping, point, comma, c.negativeOrder};
        WCHAR text[64] = TEXT("failed");
        const int length = GetNumberFormatW(English, 0, c.value, &format, text, ARRAYSIZE(text));
        EXPECT_EQ(WideText(text), c.text);
        EXPECT_EQ(length, WideView(c.text) == TEXT("failed") ? 0 : static_cast<int>(WideView(c.text).size() + 1));
        SetLastError(0);
        EXPECT_EQ(GetNumberFormatW(English, 0, c.value, &format, text, std::max(length, 2) - 1), 0);
        EXPECT_EQ(GetLastError(), DWORD(length == 0 ? ERROR_INVALID_PARAMETER : ERROR_INSUFFICIENT_BUFFER));
    }
}
