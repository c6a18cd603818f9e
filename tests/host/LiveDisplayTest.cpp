#include "host/LiveDisplay.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

namespace
{
constexpr const char *Erase = "\r\x1b[K";

class LiveDisplayTest : public testing::Test
{
protected:
    LiveDisplay Make(bool live, int lowestLevel = 1)
    {
        return LiveDisplay(
            {live, false, false, false, lowestLevel},
            [this](std::string_view drawing) {
                m_screen += drawing;
                ++m_drawings;
            },
            [this](std::string_view lines) {
                m_screen += lines; // a terminal shows both
                m_faults += lines;
            });
    }

    std::string TakeScreen() { return std::exchange(m_screen, {}); }

    static ProgressView View(int position) { return {0, 100, position, BarState::Normal, "status"}; }

    std::string m_screen;
    std::string m_faults; // what standard error got
    int m_drawings = 0;
    LiveDisplay::Clock::time_point m_now{10s};
};
} // namespace

TEST_F(LiveDisplayTest, LinesScrollAboveTheProgressAndLeaveNothingBehind)
{
    auto display = Make(true);
    display.ShowProgress(View(50), m_now);
    const std::string line = TakeScreen();
    EXPECT_THAT(line, HasSubstr("50%"));
    display.Log(3, "broke");
    EXPECT_EQ(TakeScreen(), Erase + std::string("error: broke\n") + line);
    display.EndProgress();
    EXPECT_EQ(TakeScreen(), Erase);
    display.Print("done\n");
    display.Print("failed\n", true);
    EXPECT_EQ(TakeScreen(), "done\nfailed\n");
    EXPECT_EQ(m_faults, "error: broke\nfailed\n");
}

TEST_F(LiveDisplayTest, DrawsAtMostTwentyTimesASecondAndLosesNothing)
{
    auto display = Make(true);
    for (int i = 0; i <= 1000; ++i)
    {
        display.ShowProgress(View(i / 10), m_now += 1ms);
    }
    EXPECT_LE(m_drawings, 21);
    display.ShowProgress(View(100), m_now);
    TakeScreen();
    display.Refresh(m_now += 50ms);
    EXPECT_THAT(TakeScreen(), HasSubstr("100%"));
    display.Refresh(m_now += 50ms);
    EXPECT_EQ(TakeScreen(), "");
}

TEST_F(LiveDisplayTest, WithoutATerminalThereAreLogLinesAlone)
{
    auto display = Make(false);
    display.ShowProgress(View(50), m_now);
    display.Log(0, "detail");
    display.Log(1, "news\x1b[2J");
    display.Log(2, "careful");
    display.Resize(10);
    display.EndProgress();
    EXPECT_EQ(m_screen, "news^[[2J\nwarning: careful\n");
}

TEST_F(LiveDisplayTest, VerboseShowsTheDetails)
{
    Make(false, 0).Log(0, "detail");
    EXPECT_EQ(TakeScreen(), "verbose: detail\n");
}

TEST_F(LiveDisplayTest, ANarrowerTerminalGetsANarrowerLine)
{
    auto display = Make(true);
    display.ShowProgress(View(50), m_now);
    TakeScreen();
    display.Resize(12);
    EXPECT_EQ(TakeScreen(), std::string(Erase) + " 50%  st...");
}
