#include "host/LinkText.h"

#include <gtest/gtest.h>

TEST(LinkText, LinksNameTheCommandThatDoesTheSame)
{
    EXPECT_EQ(LinksAsText("Ready. <a id=\"settings\" href=\"parameters\">Settings...</a> now"),
              "Ready. [Settings...: halvora settings] now");
    EXPECT_EQ(LinksAsText("<a id=\"other\">Words</a> &lt;x&gt; &amp;lt;"), "Words <x> &lt;");
}

TEST(LinkText, WhatIsNoWholeLinkStays)
{
    EXPECT_EQ(LinksAsText("a <a id=\"settings\">open"), "a <a id=\"settings\">open");
    EXPECT_EQ(LinksAsText("downscale for 8\" print"), "downscale for 8\" print");
    EXPECT_EQ(LinksAsText(""), "");
}
