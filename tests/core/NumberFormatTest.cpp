#include "core/NumberFormat.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
LocaleNumberFormat Conventions(WideView decimal, WideView thousand, UINT32 digits, UINT32 grouping)
{
    LocaleNumberFormat format;
    format.DecimalSeparator = decimal;
    format.ThousandSeparator = thousand;
    format.NumDigits = digits;
    format.Grouping = grouping;
    format.LeadingZero = 1;
    format.NegativeOrder = 1;
    return format;
}

LocaleNumberFormat English()
{
    return Conventions(TEXT("."), TEXT(","), 2, 3);
}

constexpr LCID EnglishUnitedStates = 0x409;
constexpr LCID German = 0x407;
constexpr LCID Hindi = 0x439;
} // namespace

TEST(NumberFormat, PrintsEachKindByTheConventionsItWasGiven)
{
    const LocaleNumberFormat comma = Conventions(TEXT(","), TEXT("."), 3, 3);
    const struct
    {
        LocaleNumberFormat format;
        NumberValue value;
        NumberKind kind;
        INT32 decimals;
        const WCHAR *text;
    } cases[] = {
        {English(), {.Signed = 0}, NUMBER_SIGNED, 0, TEXT("0")},
        {English(), {.Signed = 1024}, NUMBER_SIGNED, LocaleDecimals, TEXT("1,024")},
        {English(), {.Signed = 1024}, NUMBER_SIGNED, 5, TEXT("1,024")},
        {English(),
         {.Signed = std::numeric_limits<INT64>::min()},
         NUMBER_SIGNED,
         0,
         TEXT("-9,223,372,036,854,775,808")},
        {English(),
         {.Unsigned = std::numeric_limits<UINT64>::max()},
         NUMBER_UNSIGNED,
         0,
         TEXT("18,446,744,073,709,551,615")},
        {English(), {.Double = 8.26}, NUMBER_DOUBLE, 1, TEXT("8.3")},
        {English(), {.Double = 0.5}, NUMBER_DOUBLE, LocaleDecimals, TEXT("0.50")},
        {English(), {.Double = 1e6}, NUMBER_DOUBLE, 0, TEXT("1,000,000")},
        {comma, {.Double = 1234.5}, NUMBER_DOUBLE, 1, TEXT("1.234,5")},
        {comma, {.Double = 1234.5}, NUMBER_DOUBLE, LocaleDecimals, TEXT("1.234,500")},
    };
    for (auto [format, value, kind, decimals, expected] : cases)
    {
        WCHAR text[64] = TEXT("before");
        EXPECT_EQ(FormatNumber(format, value, kind, decimals, text), S_OK);
        EXPECT_EQ(WideView(text), WideView(expected));
    }
}

TEST(NumberFormat, RefusesWhatItCannotFormat)
{
    LocaleNumberFormat format = English();
    const struct
    {
        NumberKind kind;
        INT32 decimals;
    } refused[] = {{NUMBER_DOUBLE, 31}, {NUMBER_DOUBLE, -2}, {NUMBER_SIGNED, 31}, {static_cast<NumberKind>(3), 0}};
    for (const auto &[kind, decimals] : refused)
    {
        WCHAR text[64] = TEXT("before");
        EXPECT_EQ(FormatNumber(format, {.Signed = 1}, kind, decimals, text), E_INVALIDARG);
        EXPECT_EQ(WideView(text), WideView(TEXT("before")));
    }

    for (const auto &[value, code] :
         {std::pair(1e300, 0x8007007Au), std::pair(std::numeric_limits<double>::infinity(), 0x80070057u)})
    {
        WCHAR text[64] = TEXT("before");
        EXPECT_EQ(FormatNumber(format, {.Double = value}, NUMBER_DOUBLE, 30, text), static_cast<HRESULT>(code));
        EXPECT_EQ(WideView(text), WideView());
    }
}

TEST(NumberFormat, ReadsTheConventionsOfALocale)
{
    const struct
    {
        LCID locale;
        const WCHAR *decimal;
        const WCHAR *thousand;
    } cases[] = {{EnglishUnitedStates, TEXT("."), TEXT(",")},
                 {German, TEXT(","), TEXT(".")},
                 {Hindi, TEXT("."), TEXT(",")}};
    for (const auto &[locale, decimal, thousand] : cases)
    {
        LocaleNumberFormat format(locale);
        ASSERT_TRUE(LoadLocaleFormat(format, false));
        EXPECT_EQ(format.DecimalSeparator, decimal);
        EXPECT_EQ(format.ThousandSeparator, thousand);
        EXPECT_EQ(format.Grouping, 3u);
        EXPECT_EQ(format.LeadingZero, 1u);
        EXPECT_EQ(format.NegativeOrder, 1u);
        EXPECT_EQ(format.NumDigits, 2u);
    }
}

TEST(NumberFormat, LoadsOnFirstUseAndThenOnlyWhenToldTo)
{
    // The identifiers that stand for a locale without being one.
    for (const LCID generic : {0, 127, 1024, 2048, 3072, 4096, 5120})
    {
        SetLastError(0);
        LocaleNumberFormat format(generic);
        LoadLocaleFormat(format, true);
        EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER)) << generic;
    }
    LocaleNumberFormat format(German);
    WCHAR text[64];
    EXPECT_EQ(FormatNumber(format, {.Signed = 1234567}, NUMBER_SIGNED, 0, text), S_OK);
    EXPECT_EQ(WideView(text), WideView(TEXT("1.234.567")));

    format.DecimalSeparator = TEXT("!");
    EXPECT_TRUE(LoadLocaleFormat(format, false));
    EXPECT_EQ(format.DecimalSeparator, TEXT("!"));
    EXPECT_TRUE(LoadLocaleFormat(format, true));
    EXPECT_EQ(format.DecimalSeparator, TEXT(","));
}

TEST(NumberFormat, AnUnknownLocaleFailsAndEmptiesTheRecord)
{
    LocaleNumberFormat format = English();
    format.Locale = 0xFFFF;
    EXPECT_FALSE(LoadLocaleFormat(format, true));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(format.IsLoaded());
    EXPECT_TRUE(format.ThousandSeparator.empty());
    EXPECT_EQ(format.Grouping, 0u);
    EXPECT_EQ(format.LeadingZero, 0u);
    EXPECT_EQ(format.Locale, 0xFFFFu);

    WCHAR text[64] = TEXT("before");
    EXPECT_EQ(FormatNumber(format, {.Signed = 1}, NUMBER_SIGNED, 0, text),
              HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(WideView(text), WideView());
}
