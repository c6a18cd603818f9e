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

TEST(StringCch, PrintsWhatTheProgramsFormatsHold)
{
    WCHAR text[200] = {};
    EXPECT_EQ(Print(text, 200, TEXT("%ls: 0x%08lx %04x%04x, %d%% of %d %lu %I64d"), TEXT("caf\u00E9"),
                    static_cast<UINT32>(E_FAIL), 0x409, 0x4B0, -7, INT32_MIN, UINT32_MAX, INT64_MIN),
              S_OK);
    EXPECT_EQ(WideText(text),
              TEXT("caf\u00E9: 0x80004005 040904b0, -7% of -2147483648 4294967295 -9223372036854775808"));
    EXPECT_EQ(Print(text, 200, TEXT("?"), TEXT("unused"), 1), S_OK);
    EXPECT_EQ(WideText(text), TEXT("?"));
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
