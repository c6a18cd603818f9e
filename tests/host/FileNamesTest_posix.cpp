#include "host/FileNames.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

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
