#include "com/WideText.h"

#include <windows.h>
#include <strsafe.h>

#include <gtest/gtest.h>

namespace
{
HRESULT Print(WCHAR *text, size_t capacity, const WCHAR *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const HRESULT result = StringCchVPrintfW(text, capacity, format, arguments);
    va_end(arguments);
    return result;
}

TEST(StringCch, CutsTerminatesAndReports)
{
    WCHAR text[8] = {};
    EXPECT_EQ(Print(text, 8, TEXT("%ls-%d"), TEXT("abc"), 123), S_OK);
    EXPECT_EQ(WideText(text), TEXT("abc-123"));
    EXPECT_EQ(Print(text, 8, TEXT("%ls-%d"), TEXT("abc"), 1234), STRSAFE_E_INSUFFICIENT_BUFFER);
    EXPECT_EQ(WideText(text), TEXT("abc-123"));
    EXPECT_EQ(Print(text, 1, TEXT("%d"), 1), STRSAFE_E_INSUFFICIENT_BUFFER);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(Print(text, 0, TEXT("%d"), 1), STRSAFE_E_INVALID_PARAMETER);
}
} // namespace
