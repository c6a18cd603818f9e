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
    }
    ASSERT_EQ(views.size(), 4u);
    EXPECT_EQ(views[0].state, BarState::Normal);
    EXPECT_EQ(views[1].position, 50);
    EXPECT_EQ(views[3].high, 200);
    EXPECT_EQ(views[3].state, BarState::Paused);
    EXPECT_EQ(views[3].status, "größer");
}
