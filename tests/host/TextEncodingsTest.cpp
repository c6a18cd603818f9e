#include "host/TextEncodings.h"

#include <gtest/gtest.h>

using namespace std::string_view_literals;

TEST(TextEncodings, BytesThatAreNoUtf8AreReadAsWindowsLatin)
{
    EXPECT_EQ(TextFromUtf8OrLatin("Köln 漢字 \xF0\x9F\x93\xB7"), TEXT("Köln 漢字 📷"));
    EXPECT_EQ(TextFromUtf8OrLatin("K\xF6ln"), TEXT("Köln"));
    EXPECT_EQ(TextFromUtf8OrLatin("\x80 \x93x\x94"), TEXT("€ “x”"));
    EXPECT_EQ(TextFromUtf8("\xC3"), std::nullopt);
    EXPECT_EQ(TextFromUtf8("\xEF\xBB\xBFx"), TEXT("x"));
}

TEST(TextEncodings, Utf16IsReadInEitherOrderAndAMarkDecides)
{
    EXPECT_EQ(TextFromUtf16("a\0\xF6\0\0"sv, ByteOrder16::LittleEndian), TEXT("aö"));
    EXPECT_EQ(TextFromUtf16("\xFE\xFF\0a"sv, ByteOrder16::LittleEndian), TEXT("a"));
    EXPECT_EQ(TextFromUtf16Guessing("\0H\0i"sv, ByteOrder16::LittleEndian), TEXT("Hi"));
    EXPECT_EQ(TextFromUtf16Guessing("H\0i\0"sv, ByteOrder16::BigEndian), TEXT("Hi"));
    EXPECT_EQ(TextFromUtf16Guessing("\x22\x6F\x57\x5B"sv, ByteOrder16::LittleEndian), TEXT("漢字"));
    EXPECT_EQ(TextFromUtf16Guessing("\x6F\x22\x5B\x57"sv, ByteOrder16::BigEndian), TEXT("漢字"));
}

TEST(TextEncodings, JapaneseIsReadWithAndWithoutEscapes)
{
    EXPECT_EQ(TextFromJis("\x1B$B4A;z\x1B(B ok"), TEXT("漢字 ok"));
    EXPECT_EQ(TextFromJis("4A;z"), TEXT("漢字"));
    EXPECT_EQ(TextFromJis("\x8A\xBF\x8E\x9A"), TEXT("漢字"));
}

TEST(TextEncodings, PaddingGoesAndTextStays)
{
    EXPECT_EQ(WithoutPadding(WideText(TEXT("a b \0\0\0"), 7)), TEXT("a b"));
    EXPECT_EQ(WithoutPadding(WideText(TEXT("  "))), TEXT(""));
}
