#include "host/SafeLine.h"

#include <gtest/gtest.h>

TEST(SafeLine, NothingThatCommandsATerminalPasses)
{
    EXPECT_EQ(OneSafeLine("a\x1b]0;t\x07"
                          "b\r\nc\td\x7f"),
              "a^[]0;t^Gb c d^?");
    EXPECT_EQ(OneSafeLine("\xC2\x9B"
                          "2J \xE2\x80\xAE"
                          "gpj.x \xFF"),
              "\xEF\xBF\xBD"
              "2J \xEF\xBF\xBDgpj.x \xEF\xBF\xBD");
    EXPECT_EQ(OneSafeLine("שלום 漢字 📷"), "שלום 漢字 📷");
}
