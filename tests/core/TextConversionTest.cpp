// UTF-8 and UTF-16, and text from others on a terminal's line.
#include "com/SafeText.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(TextConversion, KeepsCharactersAndReplacesFaults)
{
    // Valid ones at both ends of each length, and faults with the number of their parts (Unicode 3.9, table 3-8).
    const struct
    {
        std::string bytes;
        WideText text;
    } cases[] = {
        {"\0\x7F"s, WideText(TEXT("\0\x7F"), 2)},
        {"\xC2\x80\xDF\xBF", {0x80, 0x7FF}},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", {0x800, 0xD7FF, 0xE000, 0xFFFF}},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", {0xD800, 0xDC00, 0xDBFF, 0xDFFF}},
        {"\xE2\x82\x41", {0xFFFD, 'A'}},
        {"\xF0\x9F\x98", {0xFFFD}},
        {"a\xFF\x80"
         "b",
         {'a', 0xFFFD, 0xFFFD, 'b'}},
        {"\xC0\xAF", {0xFFFD, 0xFFFD}},
        {"\xC1\xBF", {0xFFFD, 0xFFFD}},
        {"\xE0\x9F\xBF", {0xFFFD, 0xFFFD, 0xFFFD}},
        {"\xED\xA0\x80", {0xFFFD, 0xFFFD, 0xFFFD}},
        {"\xF0\x8F\x80\x80", {0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}},
        {"\xF4\x90\x80\x80", {0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}},
        {"\xF5\x80", {0xFFFD, 0xFFFD}},
    };
    for (const auto &c : cases)
    {
        SCOPED_TRACE(testing::PrintToString(c.bytes));
        EXPECT_EQ(FromUtf8(c.bytes), c.text);
        const bool isValid = c.text.find(WCHAR{0xFFFD}) == WideText::npos;
        EXPECT_EQ(IsUtf8(c.bytes), isValid);
        EXPECT_EQ(ToUtf8(c.text) == c.bytes, isValid);
        EXPECT_EQ(RepairedUtf8(c.bytes), ToUtf8(c.text));
        EXPECT_EQ(PathToBytes(PathFromBytes(c.bytes)), c.bytes);
    }
    // Surrogates without their partners.
    EXPECT_EQ(ToUtf8(WideText{'x', 0xD83D, 'y', 0xDE00, 0xD83D}), "x\xEF\xBF\xBDy\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(PathFromBytes("\xC3\xB6\xFF"), (WideText{0xF6, 0xDCFF}));
}

TEST(SafeText, NothingThatCommandsATerminalPasses)
{
    EXPECT_EQ(OneSafeLine("a\x1b]0;t\x07"
                          "b\r\nc\td\x7f\xE2\x80\xA8"),
              "a^[]0;t^Gb c d^? ");
    for (const char *command :
         {"\xC2\x80", "\xC2\x9F", "\xE2\x80\xAA", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA9", "\xFF"})
    {
        EXPECT_EQ(OneSafeLine("a" + std::string(command) + "2J"), "a\xEF\xBF\xBD"
                                                                  "2J");
    }
    for (const char *text :
         {"שלום 漢字 📷", "\xC2\xA0", "\xE2\x80\xA7", "\xE2\x80\xAF", "\xE2\x81\xA5", "\xE2\x81\xAA"})
    {
        EXPECT_EQ(OneSafeLine(text), text);
    }
}
