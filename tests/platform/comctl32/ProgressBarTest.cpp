#include "tests/platform/KnownGaps.h"

#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

namespace
{
class ProgressBar : public testing::Test
{
protected:
    void SetUp() override
    {
        const INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_PROGRESS_CLASS};
        ASSERT_TRUE(InitCommonControlsEx(&controls));
        m_bar =
            CreateWindowExW(0, PROGRESS_CLASSW, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        ASSERT_NE(m_bar, nullptr);
    }

    void TearDown() override { DestroyWindow(m_bar); }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(m_bar, message, wParam, lParam);
    }

    HWND m_bar = nullptr;
};

TEST_F(ProgressBar, PositionsAnswerWithTheLastAndStayInTheRange)
{
    EXPECT_EQ(Send(PBM_SETPOS, 30), 0);
    EXPECT_EQ(Send(PBM_SETPOS, 500), 30);
    EXPECT_EQ(Send(PBM_GETPOS), 100);
    EXPECT_EQ(Send(PBM_SETPOS, static_cast<WPARAM>(-5)), 100);
    EXPECT_EQ(Send(PBM_GETPOS), 0);
}

TEST_F(ProgressBar, ANewRangeTakesThePositionAlong)
{
    Send(PBM_SETPOS, 80);
    EXPECT_EQ(Send(PBM_SETRANGE32, 0, 50), MAKELONG(0, 100));
    EXPECT_EQ(Send(PBM_GETPOS), 50);
    EXPECT_EQ(Send(PBM_SETRANGE32, 0, 4000000), MAKELONG(0, 50));
    Send(PBM_SETPOS, 3999999);
    EXPECT_EQ(Send(PBM_GETPOS), 3999999);
    PBRANGE range{};
    EXPECT_EQ(Send(PBM_GETRANGE, FALSE, reinterpret_cast<LPARAM>(&range)), 4000000);
    EXPECT_EQ(range.iLow, 0);
    EXPECT_EQ(range.iHigh, 4000000);
    EXPECT_EQ(Send(PBM_GETRANGE, TRUE), 0);
    Send(PBM_SETRANGE32, 0, 0);
    EXPECT_EQ(Send(PBM_GETPOS), 0);
}

// The bar of Wine 8 knows the normal state only.
TEST_F(ProgressBar, StatesAnswerWithTheLast)
{
    EXPECT_EQ(Send(PBM_GETSTATE), PBST_NORMAL);
    EXPECT_EQ(Send(PBM_SETSTATE, PBST_PAUSED), PBST_NORMAL);
    EXPECT_EQ(Send(PBM_SETSTATE, PBST_ERROR), UnderWineBefore10 ? PBST_NORMAL : PBST_PAUSED);
    EXPECT_EQ(Send(PBM_GETSTATE), UnderWineBefore10 ? PBST_NORMAL : PBST_ERROR);
}
} // namespace
