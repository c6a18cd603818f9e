#include "ui/WaitingAnimation.h"

#include <gtest/gtest.h>

#include <vector>

TEST(WaitingAnimation, TheFrameFollowsTheTimePassed)
{
    const struct
    {
        const char *what;
        std::vector<std::pair<UINT32, UINT32>> frames; // at that tick, that frame
    } cases[] = {
        {"from the first frame on, one in 125 ms, around after a second",
         {{5000, 0}, {5124, 0}, {5125, 1}, {5999, 7}, {6000, 0}, {6125, 1}}},
        {"at one moment the same frame, however often it is asked for", {{5000, 0}, {5300, 2}, {5300, 2}}},
        {"a late tick jumps ahead", {{5000, 0}, {5125, 1}, {5525, 4}}},
        {"a counter that wraps begins anew", {{0xFFFFFF00, 0}, {0xFFFFFF7D, 1}, {100, 0}, {225, 1}}},
        {"a counter that stands at 0 is no start", {{0, 0}, {300, 0}, {425, 1}}},
    };
    for (const auto &[what, frames] : cases)
    {
        SCOPED_TRACE(what);
        WaitingAnimation animation;
        animation.running = true;
        for (const auto &[tick, frame] : frames)
        {
            EXPECT_EQ(animation.FrameAt(tick, 8), frame) << "at " << tick;
        }
    }
}

TEST(WaitingAnimation, EachStartBeginsWithTheFirstFrame)
{
    WaitingAnimation animation;
    EXPECT_EQ(animation.FrameAt(1000, 8), 0u) << "not running";
    animation.running = true;
    EXPECT_EQ(animation.FrameAt(1300, 8), 0u);
    EXPECT_EQ(animation.FrameAt(1700, 8), 3u);
    animation.restart = true;
    animation.running = false;
    EXPECT_EQ(animation.FrameAt(1750, 8), 0u) << "the paint of the stop";
    EXPECT_EQ(animation.FrameAt(1800, 8), 0u);
    animation.running = true;
    EXPECT_EQ(animation.FrameAt(2300, 8), 0u);
    EXPECT_EQ(animation.FrameAt(2425, 8), 1u);
}

TEST(WaitingAnimation, AnyNumberOfFramesWill)
{
    WaitingAnimation animation;
    animation.running = true;
    EXPECT_EQ(animation.FrameAt(1000, 3), 0u);
    EXPECT_EQ(animation.FrameAt(1375, 3), 0u);
    EXPECT_EQ(animation.FrameAt(1500, 3), 1u);
    EXPECT_EQ(animation.FrameAt(1500, 0), 0u) << "no strip";
}
