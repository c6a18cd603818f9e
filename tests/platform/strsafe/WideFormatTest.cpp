#include "com/WideText.h"
#include "tests/platform/KnownGaps.h"

#include <strsafe.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

namespace
{
WideText Print(const WCHAR *format, ...)
{
    WCHAR text[600];
    va_list arguments;
    va_start(arguments, format);
    EXPECT_EQ(StringCchVPrintfW(text, ARRAYSIZE(text), format, arguments), S_OK);
    va_end(arguments);
    return text;
}

#define EXPECT_PRINTS(expected, format, ...)                                                                      \
    EXPECT_EQ(Print(TEXT(format) __VA_OPT__(, ) __VA_ARGS__), WideText(TEXT(expected))) << format

TEST(WideFormat, IntegersWithFlagsWidthAndPrecision)
{
    EXPECT_PRINTS("42|-42|0", "%d|%i|%d", 42, -42, 0);
    EXPECT_PRINTS("+5| 5|-5", "%+d|% d|%+d", 5, 5, -5);
    EXPECT_PRINTS("+5", "% +d", 5);
    EXPECT_PRINTS("[    5][5    ][00005][-0005]", "[%5d][%-5d][%05d][%05d]", 5, 5, 5, -5);
    EXPECT_PRINTS("[5    ]", "[%-05d]", 5);
    EXPECT_PRINTS("[  007][007  ]", "[%5.3d][%-5.3d]", 7, 7);
    // Windows documents that a precision disables the flag 0.
    EXPECT_EQ(Print(TEXT("%05.3d"), 7), UnderWine ? TEXT("00007") : TEXT("  007"));
    EXPECT_PRINTS("[][  ]", "[%.0d][%2.0u]", 0, 0u);
    EXPECT_PRINTS("[   42][42   ][007]", "[%*d][%*d][%.*d]", 5, 42, -5, 42, 3, 7);
    EXPECT_PRINTS("[7]", "[%.*d]", -3, 7);
    EXPECT_PRINTS("ff FF 0xff 0XFF 0 377 0377", "%x %X %#x %#X %#x %o %#o", 255, 255, 255, 255, 0, 255, 255);
    EXPECT_PRINTS("0x0000ff", "%#08x", 255);
    EXPECT_PRINTS("-2147483648 4294967295", "%d %u", INT_MIN, UINT_MAX);
}

TEST(WideFormat, LongIsThirtyTwoBitsWide)
{
    EXPECT_PRINTS("0x80004005", "0x%08lx", static_cast<HRESULT>(0x80004005));
    EXPECT_PRINTS("-1 4294967295 ffffffff", "%ld %lu %lx", LONG(-1), ULONG(-1), ULONG(-1));
    EXPECT_PRINTS("7 8 9", "%ld %d %lu", LONG(7), 8, ULONG(9));
    EXPECT_PRINTS("-1 65535", "%hd %hu", 0xFFFF, 0xFFFF);
}

TEST(WideFormat, SixtyFourBits)
{
    EXPECT_PRINTS("-9223372036854775808 18446744073709551615", "%I64d %I64u", INT64(LLONG_MIN),
                  UINT64(ULLONG_MAX));
    EXPECT_PRINTS("123456789abcdef 123456789ABCDEF", "%I64x %llX", INT64(0x123456789ABCDEF), 0x123456789ABCDEFLL);
    EXPECT_PRINTS("-5 5 1", "%lld %llu %I32d", -5LL, 5ULL, 1);
    EXPECT_PRINTS("[        7|7]", "[%9I64d|%d]", INT64(7), 7);
    EXPECT_PRINTS("00000000DEADBEEF", "%p", reinterpret_cast<void *>(0xDEADBEEF));
}

TEST(WideFormat, TextsAreWideUnlessMarkedNarrow)
{
    const WCHAR *const wide = TEXT("wide");
    EXPECT_PRINTS("wide wide wide narrow narrow", "%s %ls %ws %S %hs", wide, wide, wide, "narrow", "narrow");
    EXPECT_PRINTS("[  wide][wide  ][wi][  wi]", "[%6s][%-6ls][%.2s][%4.*s]", wide, wide, wide, 2, wide);
    EXPECT_PRINTS("[na][    na]", "[%.2S][%6.2hs]", "narrow", "narrow");
    EXPECT_PRINTS("(null) (null) (n", "%s %S %.2s", static_cast<WCHAR *>(nullptr), static_cast<char *>(nullptr),
                  static_cast<WCHAR *>(nullptr));
    EXPECT_PRINTS("a b c d", "%c %lc %C %hc", 'a', 'b', 'c', 'd');
    EXPECT_PRINTS("[  x][x  ]", "[%3c][%-3c]", 'x', 'x');
    EXPECT_PRINTS("\x20AC|\x3B1\x3B2", "%c|%ls", 0x20AC, TEXT("\x3B1\x3B2"));
}

TEST(WideFormat, APrecisionStopsReadingUnterminatedText)
{
    const WCHAR unterminated[] = {'a', 'b', 'c'};
    EXPECT_PRINTS("abc", "%.3ls", unterminated);
}

TEST(WideFormat, FloatsInFixedNotation)
{
    EXPECT_PRINTS("3.141593 3.14 3", "%f %.2f %.0f", 3.14159265, 3.14159265, 3.14159265);
    EXPECT_PRINTS("[   -1.50][-1.50   ][-0001.50]", "[%8.2f][%-8.2lf][%08.2f]", -1.5, -1.5, -1.5);
    EXPECT_PRINTS("+1.0  1.0 1.", "%+.1f % .1f %#.0f", 1.0, 1.0, 1.0);
    EXPECT_PRINTS("0.1 0.125 100000000000000000000", "%.*lf %.*f %.0f", 1, 0.1, 3, 0.125, 1e20);
    EXPECT_PRINTS("-0.00", "%.2f", -0.0);
}

// Two digits of an exponent, as Windows has had it since 2015; msvcrt.dll, the runtime library of mingw's
// programs, still prints three.
TEST(WideFormat, FloatsWithExponents)
{
    EXPECT_EQ(Print(TEXT("%e"), 12345.678), IsWindowsBuild ? TEXT("1.234568e+004") : TEXT("1.234568e+04"));
    EXPECT_EQ(Print(TEXT("%.2E"), 0.00012), IsWindowsBuild ? TEXT("1.20E-004") : TEXT("1.20E-04"));
    EXPECT_PRINTS("0.0001 100000 1.5 0", "%g %g %g %g", 0.0001, 100000.0, 1.5, 0.0);
    EXPECT_EQ(Print(TEXT("%g"), 1e6), IsWindowsBuild ? TEXT("1e+006") : TEXT("1e+06"));
}

TEST(WideFormat, PercentSignsAndWhatIsNoConversion)
{
    EXPECT_PRINTS("100% of 5", "100%% of %d", 5);
    EXPECT_PRINTS("?", "?", 1, TEXT("unused"));
    EXPECT_PRINTS("end", "end%");
    EXPECT_PRINTS("", "");
}

TEST(WideFormat, NarrowTextIsUtf8)
{
    if (IsWindowsBuild)
    {
        GTEST_SKIP() << "Windows reads narrow text by the C locale's code page.";
    }
    EXPECT_PRINTS("\xFC\x20AC|", "%S|", "\xC3\xBC\xE2\x82\xAC");
    EXPECT_EQ(Print(TEXT("%hs"), "\xF0\x9F\x93\xB7"), WideText(TEXT("\xD83D\xDCF7")));
    EXPECT_EQ(Print(TEXT("%hs|"), "a\xFF\xE2\x82"), WideText(TEXT("a\xFFFD\xFFFD|")));
}
} // namespace
