#include "host/ProgressWindows.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <thread>

TEST(ProgressWindowsTest, EveryChangeIsToldWhateverThreadMakesIt)
{
    std::vector<ProgressView> views;
    {
        const ProgressWindows windows([&](const ProgressView &view) { views.push_back(view); });
        std::thread([&] {
            SendMessageW(windows.Bar(), PBM_SETRANGE32, 0, 200);
            SendMessageW(windows.Bar(), PBM_SETPOS, 50, 0);
            SendMessageW(windows.Bar(), PBM_SETSTATE, PBST_PAUSED, 0);
            SetWindowTextW(windows.Status(), TEXT("größer"));
        }).join();
        EXPECT_EQ(SendMessageW(windows.Bar(), PBM_GETPOS, 0, 0), 50);
        // Positions stay within the range, whichever of the two changes.
        SendMessageW(windows.Bar(), PBM_SETPOS, 500, 0);
        SendMessageW(windows.Bar(), PBM_SETRANGE32, 10, 4000000);
        SendMessageW(windows.Bar(), PBM_SETPOS, static_cast<WPARAM>(-5), 0);
        SendMessageW(windows.Bar(), PBM_SETPOS, 3999999, 0);
        SendMessageW(windows.Bar(), PBM_SETRANGE32, 0, 70);
    }
    ASSERT_EQ(views.size(), 9u);
    for (const auto &[view, position] : {std::pair(4, 200), {5, 200}, {6, 10}, {7, 3999999}, {8, 70}})
    {
        EXPECT_EQ(views[view].position, position) << view;
    }
    EXPECT_EQ(views[0].state, BarState::Normal);
    EXPECT_EQ(views[5].low, 10);
    EXPECT_EQ(views[1].position, 50);
    EXPECT_EQ(views[3].high, 200);
    EXPECT_EQ(views[3].state, BarState::Paused);
    EXPECT_EQ(views[3].status, "größer");
}
