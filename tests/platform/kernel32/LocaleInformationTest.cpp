#include "com/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace
{
constexpr LCID Locale(WORD primary, WORD sub)
{
    return MAKELCID(MAKELANGID(primary, sub), SORT_DEFAULT);
}

constexpr LCID English = Locale(LANG_ENGLISH, SUBLANG_ENGLISH_US);
constexpr LCID German = Locale(LANG_GERMAN, SUBLANG_GERMAN);
constexpr LCID Hindi = Locale(LANG_HINDI, SUBLANG_HINDI_INDIA);

WideText Read(LCID locale, LCTYPE type)
{
    WCHAR text[16];
    return GetLocaleInfoW(locale, type, text, ARRAYSIZE(text)) > 0 ? text : TEXT("failed");
}

TEST(LocaleInformation, TextsOfKnownLocales)
{
    const struct
    {
        LCID locale;
        const WCHAR *decimal;
        const WCHAR *thousand;
        const WCHAR *grouping;
    } cases[] = {
        {English, TEXT("."), TEXT(","), TEXT("3;0")},
        {German, TEXT(","), TEXT("."), TEXT("3;0")},
        {Hindi, TEXT("."), TEXT(","), TEXT("3;2;0")},
        {LOCALE_INVARIANT, TEXT("."), TEXT(","), TEXT("3;0")},
    };
    for (const auto &c : cases)
    {
        EXPECT_EQ(Read(c.locale, LOCALE_SDECIMAL), c.decimal) << c.locale;
        EXPECT_EQ(Read(c.locale, LOCALE_STHOUSAND), c.thousand) << c.locale;
        EXPECT_EQ(Read(c.locale, LOCALE_SGROUPING), c.grouping) << c.locale;
    }
    EXPECT_EQ(Read(English, LOCALE_ILZERO), TEXT("1"));
    EXPECT_EQ(Read(English, LOCALE_IDIGITS), TEXT("2"));
    EXPECT_EQ(Read(English, LOCALE_INEGNUMBER), TEXT("1"));
}

TEST(LocaleInformation, SizesAndRefusals)
{
    WCHAR text[4];
    EXPECT_EQ(GetLocaleInfoW(English, LOCALE_SGROUPING, nullptr, 0), 4);
    EXPECT_EQ(GetLocaleInfoW(English, LOCALE_SGROUPING, text, 3), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(GetLocaleInfoW(English, LOCALE_SGROUPING, nullptr, 3), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(GetLocaleInfoW(0xBEEF, LOCALE_SGROUPING, text, 4), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(GetLocaleInfoW(English, 0x0FFF, text, 4), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
}

TEST(LocaleInformation, ValidLocales)
{
    EXPECT_TRUE(IsValidLocale(English, LCID_SUPPORTED));
    EXPECT_TRUE(IsValidLocale(German, LCID_SUPPORTED));
    EXPECT_FALSE(IsValidLocale(0xBEEF, LCID_SUPPORTED));
}
} // namespace
