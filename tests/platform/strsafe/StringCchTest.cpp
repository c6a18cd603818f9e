#include "com/WideText.h"

#include <strsafe.h>

#include <gtest/gtest.h>

namespace
{
constexpr size_t TooLarge = size_t{STRSAFE_MAX_CCH} + 1;

TEST(StringCch, CopyCutsTerminatesAndReports)
{
    WCHAR text[4] = {'z', 'z', 'z', 'z'};
    EXPECT_EQ(StringCchCopyW(text, 4, TEXT("abc")), S_OK);
    EXPECT_EQ(WideText(text), TEXT("abc"));
    EXPECT_EQ(StringCchCopyW(text, 4, TEXT("defg")), STRSAFE_E_INSUFFICIENT_BUFFER);
    EXPECT_EQ(WideText(text), TEXT("def"));
    EXPECT_EQ(StringCchCopyW(text, 1, TEXT("x")), STRSAFE_E_INSUFFICIENT_BUFFER);
    EXPECT_EQ(WideText(text), TEXT(""));
    EXPECT_EQ(StringCchCopyW(text, 1, TEXT("")), S_OK);
    EXPECT_EQ(StringCchCopyW(text, 0, TEXT("x")), STRSAFE_E_INVALID_PARAMETER);
    EXPECT_EQ(StringCchCopyW(text, TooLarge, TEXT("x")), STRSAFE_E_INVALID_PARAMETER);
}

TEST(StringCch, PrintfCutsTerminatesAndReports)
{
    WCHAR text[8] = {};
    EXPECT_EQ(StringCchPrintfW(text, 8, TEXT("%ls-%d"), TEXT("abc"), 123), S_OK);
    EXPECT_EQ(WideText(text), TEXT("abc-123"));
    EXPECT_EQ(StringCchPrintfW(text, 8, TEXT("%ls-%d"), TEXT("abc"), 1234), STRSAFE_E_INSUFFICIENT_BUFFER);
    EXPECT_EQ(WideText(text), TEXT("abc-123"));
    EXPECT_EQ(StringCchPrintfW(text, 1, TEXT("%d"), 1), STRSAFE_E_INSUFFICIENT_BUFFER);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(StringCchPrintfW(text, 0, TEXT("%d"), 1), STRSAFE_E_INVALID_PARAMETER);
}
} // namespace
