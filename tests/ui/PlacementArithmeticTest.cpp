#include "ui/PlacementArithmetic.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
RECT Sized(LONG width, LONG height, LONG left = 0, LONG top = 0)
{
    return {left, top, left + width, top + height};
}

struct Case
{
    const char *what;
    RECT window;
    RECT around;
    RECT limits;
    POINT expected;
};

TEST(Placement, CentresWithinLimits)
{
    const RECT screen = {0, 0, 1000, 800};
    const Case cases[] = {
        {"in the middle", Sized(100, 50), {200, 200, 400, 300}, screen, {250, 225}},
        {"odd sizes: each half is cut off by itself", Sized(101, 51), {0, 0, 200, 101}, screen, {50, 25}},
        {"wherever it was before", Sized(100, 50, 700, 700), {200, 200, 400, 300}, screen, {250, 225}},
        {"around something smaller", Sized(300, 200), {400, 400, 500, 420}, screen, {300, 310}},
        {"held at the right and bottom", Sized(300, 200), {900, 700, 1000, 800}, screen, {700, 600}},
        {"held at the left and top", Sized(300, 200), {0, 0, 100, 100}, screen, {0, 0}},
        {"too large: left and top win", Sized(1200, 900), {0, 0, 1000, 800}, {10, 20, 1000, 800}, {10, 20}},
        {"a monitor left of the first", Sized(100, 100), {-900, 100, -700, 300}, {-1000, 0, 0, 800}, {-850, 150}},
        {"between two monitors", Sized(200, 100), {-100, 100, 100, 200}, {0, 0, 1000, 800}, {0, 100}},
    };
    for (const Case &c : cases)
    {
        const POINT corner = CentredWithin(c.window, c.around, c.limits);
        EXPECT_EQ(corner.x, c.expected.x) << c.what;
        EXPECT_EQ(corner.y, c.expected.y) << c.what;
    }
}

TEST(Placement, CentresOnAPoint)
{
    const RECT workArea = {0, 0, 1000, 760};
    const struct
    {
        const char *what;
        RECT frame;
        POINT pointer;
        POINT expected;
    } cases[] = {
        {"free on all sides", Sized(400, 300, 50, 60), {500, 400}, {300, 250}},
        {"in a corner", Sized(400, 300, 50, 60), {3, 2}, {0, 0}},
        {"in the other corner", Sized(400, 300, 50, 60), {999, 799}, {600, 460}},
        {"wider than the work area", Sized(1500, 300), {500, 400}, {0, 250}},
        {"higher than the work area", Sized(400, 900), {500, 20}, {300, 0}},
    };
    for (const auto &c : cases)
    {
        const POINT corner = CentredOnPoint(c.frame, c.pointer, workArea);
        EXPECT_EQ(corner.x, c.expected.x) << c.what;
        EXPECT_EQ(corner.y, c.expected.y) << c.what;
    }
}

TEST(Placement, OffsetsGrowWithTheDevice)
{
    const struct
    {
        INT32 offset;
        int dots;
        LONG pixels;
    } cases[] = {{7, 96, 7}, {7, 144, 11}, {0, 144, 0}, {1, 120, 1}, {3, 120, 4}, {-7, 96, -6}, {100, 192, 200}};
    for (const auto &c : cases)
    {
        EXPECT_EQ(OffsetInPixels(c.offset, c.dots), c.pixels) << c.offset << " at " << c.dots;
    }
}
} // namespace
