#include "settings/OutputSize.h"

#include "resources/resource.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
LocaleNumberFormat Conventions(const WCHAR *decimal, const WCHAR *thousand)
{
    LocaleNumberFormat format;
    format.DecimalSeparator = decimal;
    format.ThousandSeparator = thousand;
    format.NumDigits = 2;
    format.Grouping = 3;
    format.LeadingZero = 1;
    format.NegativeOrder = 1;
    return format;
}

LocaleNumberFormat English()
{
    return Conventions(TEXT("."), TEXT(","));
}

LocaleNumberFormat German()
{
    return Conventions(TEXT(","), TEXT("."));
}

LocaleNumberFormat French()
{
    return Conventions(TEXT(","), TEXT("\x202f"));
}
} // namespace

TEST(OutputSize, HasOneDisplayFormAndOneValueForEachWayOfWritingIt)
{
    const struct
    {
        LocaleNumberFormat format;
        const WCHAR *text;
        const WCHAR *display;
        INT32 pixels;
        double dpi;
        OutputSizeUnit unit;
    } cases[] = {
        {English(), TEXT(""), TEXT("Original"), 0, 300, UNIT_PIXELS},
        {English(), TEXT("0"), TEXT("Original"), 0, 300, UNIT_PIXELS},
        {English(), TEXT("0 cm"), TEXT("Original"), 0, 330, UNIT_CENTIMETRES},
        {English(), TEXT("0.4"), TEXT("0 px"), 0, 300, UNIT_PIXELS},
        {English(), TEXT("1024"), TEXT("1,024 px"), 1024, 300, UNIT_PIXELS},
        {English(), TEXT("1024px"), TEXT("1,024 px"), 1024, 300, UNIT_PIXELS},
        {English(), TEXT("1,000,000 PIXELS"), TEXT("1,000,000 px"), 1000000, 300, UNIT_PIXELS},
        {English(), TEXT("1024 x 768"), TEXT("1,024 px"), 1024, 300, UNIT_PIXELS},
        {English(),
         TEXT("\t1 0\x00a0"
              "2 4\x3000"),
         TEXT("1,024 px"), 1024, 300, UNIT_PIXELS},
        {English(), TEXT("800.9"), TEXT("800 px"), 800, 300, UNIT_PIXELS},
        {English(), TEXT("8\""), TEXT("8\" print"), 2455, 306.923, UNIT_INCHES},
        {English(), TEXT("8in"), TEXT("8\" print"), 2455, 306.923, UNIT_INCHES},
        {English(), TEXT("8 inch"), TEXT("8\" print"), 2455, 306.923, UNIT_INCHES},
        {English(), TEXT("8 IN"), TEXT("8\" print"), 2455, 306.923, UNIT_INCHES},
        {English(), TEXT("8.26in"), TEXT("8.3\" print"), 2523, 305.423, UNIT_INCHES},
        {English(), TEXT("20cm"), TEXT("20 cm print"), 2419, 307.273, UNIT_CENTIMETRES},
        {English(), TEXT("20 CM print"), TEXT("20 cm print"), 2419, 307.273, UNIT_CENTIMETRES},
        {English(), TEXT("15 centimetres"), TEXT("15 px"), 15, 300, UNIT_PIXELS},
        {English(), TEXT("3in"), TEXT("3\" print"), 990, 330, UNIT_INCHES},
        {English(), TEXT("40in"), TEXT("40\" print"), 7200, 180, UNIT_INCHES},
        {English(), TEXT("in"), TEXT("Original"), 0, 300, UNIT_PIXELS},
        {English(), TEXT("x100"), TEXT("Original"), 0, 300, UNIT_PIXELS},
        {English(), TEXT("-5"), TEXT("Original"), 0, 300, UNIT_PIXELS},
        {English(), TEXT(".5 in"), TEXT("Original"), 0, 300, UNIT_PIXELS},
        {English(), TEXT("\x0663 px"), TEXT("Original"), 0, 300, UNIT_PIXELS},
        {German(), TEXT("2,5 cm"), TEXT("2,5 cm print"), 325, 330, UNIT_CENTIMETRES},
        {German(), TEXT("2.5 cm"), TEXT("25 cm print"), 2912, 295.909, UNIT_CENTIMETRES},
        {German(), TEXT("1.024 px"), TEXT("1.024 px"), 1024, 300, UNIT_PIXELS},
        {French(),
         TEXT("1\x202f"
              "024 px"),
         TEXT("1\x202f"
              "024 px"),
         1024, 300, UNIT_PIXELS},
        {Conventions(TEXT("*"), TEXT(" ")), TEXT("2*5 in"), TEXT("2*5\" print"), 825, 330, UNIT_INCHES},
    };
    for (auto [format, text, display, pixels, dpi, unit] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(WideText(text)));
        const WideText normalized = NormalizeOutputSize(text, IDS_SIZE_PRINT, format);
        EXPECT_EQ(normalized, display);
        if (normalized != TEXT("0 px"))
        {
            EXPECT_EQ(NormalizeOutputSize(normalized, IDS_SIZE_PRINT, format), normalized) << "reads back";
        }

        double foundDpi;
        OutputSizeUnit foundUnit;
        EXPECT_EQ(OutputSizeToPixels(text, foundDpi, foundUnit, format), pixels);
        EXPECT_NEAR(foundDpi, dpi, 0.0005);
        EXPECT_EQ(foundUnit, unit);
    }
}

TEST(OutputSize, PrintsGetFewerDotsPerInchTheLargerTheyAre)
{
    const struct
    {
        const WCHAR *text;
        double dpi;
        INT32 pixels;
    } cases[] = {
        {TEXT("1 in"), 330, 330},       {TEXT("4 in"), 330, 1320},      {TEXT("8 in"), 306.923, 2455},
        {TEXT("16 in"), 260.769, 4172}, {TEXT("24 in"), 214.615, 5151}, {TEXT("30 in"), 180, 5400},
        {TEXT("40 in"), 180, 7200},     {TEXT("10 cm"), 330, 1299},     {TEXT("20 cm"), 307.273, 2419},
        {TEXT("50 cm"), 239.091, 4707}, {TEXT("76 cm"), 180, 5386},     {TEXT("100 cm"), 180, 7087},
    };
    for (const auto &[text, dpi, pixels] : cases)
    {
        SCOPED_TRACE(testing::PrintToString(WideText(text)));
        double foundDpi;
        OutputSizeUnit unit;
        EXPECT_EQ(OutputSizeToPixels(text, foundDpi, unit, English()), pixels);
        EXPECT_NEAR(foundDpi, dpi, 0.0005);
    }
    EXPECT_EQ(PrintResolution(5, 1, 9, 200, 200), 200);
    EXPECT_EQ(PrintResolution(5, 4, 4, 100, 300), 200);
    EXPECT_EQ(PrintResolution(1, 9, 1, 100, 300), 100) << "the ends may come in either order";
    EXPECT_EQ(PrintResolution(3, 9, 1, 100, 300), 150);
    EXPECT_EQ(PrintResolution(9, 9, 1, 100, 300), 300);
}

TEST(OutputSize, TextsOfAnyLengthAreReadAndTheDisplayFormIsCut)
{
    WCHAR tight[6] = TEXT("8 in");
    NormalizeOutputSize(tight, std::size(tight), IDS_SIZE_PRINT);
    EXPECT_EQ(WideView(tight), WideView(TEXT("8\" pr")));
    NormalizeOutputSize(nullptr, 0, IDS_SIZE_PRINT);

    constexpr INT32 most = std::numeric_limits<INT32>::max();
    const struct
    {
        WideText text;
        INT32 pixels;
        double dpi;
    } cases[] = {
        {WideText(400, '9'), most, 300},
        {TEXT("999999999999 in"), most, 180},
        {TEXT("0.") + WideText(400, '0') + TEXT("1 in"), 0, 330},
        {TEXT("800 px") + WideText(50000, 'x'), 800, 300},
        {WideText(50000, ' ') + TEXT("8 in"), 2455, 306.923},
        {WideText(50000, '9'), most, 300},
    };
    for (const auto &[text, pixels, expectedDpi] : cases)
    {
        SCOPED_TRACE(text.size());
        double dpi;
        OutputSizeUnit unit;
        EXPECT_EQ(OutputSizeToPixels(text, dpi, unit, English()), pixels);
        EXPECT_NEAR(dpi, expectedDpi, 0.0005);
    }
}

TEST(OutputSize, WithoutLocaleDataAPointSeparatesDecimals)
{
    double dpi;
    OutputSizeUnit unit;
    EXPECT_EQ(OutputSizeToPixels(TEXT("2.5 in"), dpi, unit, LocaleNumberFormat()), 825);
}

TEST(OutputSize, FollowsTheUsersLocaleUnlessToldOtherwise)
{
    LocaleNumberFormat user;
    ASSERT_TRUE(LoadLocaleFormat(user, true));
    WCHAR buffer[OutputSizeCapacity] = {};
    (TEXT("2") + user.DecimalSeparator + TEXT("5cm")).copy(buffer, OutputSizeCapacity - 1);
    double dpi;
    OutputSizeUnit unit;
    EXPECT_EQ(OutputSizeToPixels(buffer, dpi, unit), 325);
    NormalizeOutputSize(buffer, OutputSizeCapacity, IDS_SIZE_PRINT);
    EXPECT_EQ(buffer, TEXT("2") + user.DecimalSeparator + TEXT("5 cm print"));
}
