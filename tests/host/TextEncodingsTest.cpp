#include "host/TextEncodings.h"

#include "host/FileNames.h"

#include <gtest/gtest.h>

using namespace std::string_view_literals;
using namespace std::string_literals;

TEST(TextEncodings, BytesThatAreNoUtf8AreReadAsWindowsLatin)
{
    EXPECT_EQ(TextFromUtf8OrLatin("Köln 漢字 \xF0\x9F\x93\xB7"), u"Köln 漢字 📷");
    EXPECT_EQ(TextFromUtf8OrLatin("K\xF6ln"), u"Köln");
    EXPECT_EQ(TextFromUtf8OrLatin("\x80 \x93x\x94"), u"€ “x”");
    EXPECT_EQ(TextFromUtf8("\xC3"), std::nullopt);
    EXPECT_EQ(TextFromUtf8("\xEF\xBB\xBFx"), u"x");
}

TEST(TextEncodings, Utf16IsReadInEitherOrderAndAMarkDecides)
{
    EXPECT_EQ(TextFromUtf16("a\0\xF6\0\0"sv, ByteOrder16::LittleEndian), u"aö");
    EXPECT_EQ(TextFromUtf16("\xFE\xFF\0a"sv, ByteOrder16::LittleEndian), u"a");
    EXPECT_EQ(TextFromUtf16Guessing("\0H\0i"sv, ByteOrder16::LittleEndian), u"Hi");
    EXPECT_EQ(TextFromUtf16Guessing("H\0i\0"sv, ByteOrder16::BigEndian), u"Hi");
    EXPECT_EQ(TextFromUtf16Guessing("\x22\x6F\x57\x5B"sv, ByteOrder16::LittleEndian), u"漢字");
    EXPECT_EQ(TextFromUtf16Guessing("\x6F\x22\x5B\x57"sv, ByteOrder16::BigEndian), u"漢字");
}

TEST(TextEncodings, JapaneseIsReadWithAndWithoutEscapes)
{
    EXPECT_EQ(TextFromJis("\x1B$B4A;z\x1B(B ok"), u"漢字 ok");
    EXPECT_EQ(TextFromJis("4A;z"), u"漢字");
    EXPECT_EQ(TextFromJis("\x8A\xBF\x8E\x9A"), u"漢字");
}

TEST(TextEncodings, PaddingGoesAndTextStays)
{
    EXPECT_EQ(WithoutPadding(WideText(u"a b \0\0\0", 7)), u"a b");
    EXPECT_EQ(WithoutPadding(WideText(u"  ")), u"");
}

TEST(TextEncodings, WhatIsNoTextLeavesAsReplacement)
{
    EXPECT_EQ(Utf8FromText(u"ö📷"), "ö📷");
    EXPECT_EQ(Utf8FromText(WideText(1, 0xD800)), "\xEF\xBF\xBD");
}

TEST(FileNames, EveryByteSurvivesTheWayThroughWideText)
{
    std::string bytes;
    for (int c = 1; c < 256; ++c)
    {
        bytes += static_cast<char>(c);
    }
    for (const std::string &name : {bytes, "ä漢📷"s, "\xED\xB2\x80\xC3"s, "\xF0\x9F\x93"s})
    {
        EXPECT_EQ(PathOfText(TextOfPath(name)).native(), name);
    }
    EXPECT_EQ(TextOfPath("ö\xFF"), (WideText{u'ö', 0xDCFF}));
    EXPECT_EQ(ShownPath("a\xFF\x1B[2J"), "a\xEF\xBF\xBD^[[2J");
}
