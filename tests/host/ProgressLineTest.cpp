#include "host/ProgressLine.h"

#include "terminal/TerminalText.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
ProgressView View(int64_t position, std::string status)
{
    return {0, 200, position, BarState::Normal, std::move(status)};
}
} // namespace

TEST(ProgressLine, ShowsBarPercentAndStatus)
{
    EXPECT_EQ(RenderProgressLine(View(100, "Half way."), {40, false, false}), "[##..]  50%  Half way.");
    EXPECT_EQ(RenderProgressLine(View(101, "ok"), {25, true, false}), "███░░░  50%  ok");
    EXPECT_EQ(RenderProgressLine(View(5, ""), {25, true, false}), "▏░░░░░   2%");
    EXPECT_EQ(RenderProgressLine(View(200, ""), {25, true, false}), "██████ 100%");
}

TEST(ProgressLine, APositionOutsideOfTheRangeIsHeldInIt)
{
    EXPECT_THAT(RenderProgressLine(View(-5, ""), {40, false, false}), HasSubstr("  0%"));
    EXPECT_THAT(RenderProgressLine(View(500, ""), {40, false, false}), HasSubstr("100%"));
    EXPECT_THAT(RenderProgressLine({0, 0, 0, BarState::Normal, ""}, {40, false, false}), HasSubstr("  0%"));
    const ProgressView huge{0, INT32_MAX, INT32_MAX / 2, BarState::Normal, ""};
    EXPECT_THAT(RenderProgressLine(huge, {40, false, false}), HasSubstr(" 49%"));
}

TEST(ProgressLine, NeverReachesTheLastColumnWhateverTheWidth)
{
    const std::string statuses[] = {"Published 12 of 40 items. Estimated time left: 3 minutes.",
                                    "漢字漢字漢字漢字漢字漢字漢字漢字", "é\xCC\x81 e\xCC\x81 📷📷📷 x", ""};
    for (const std::string &status : statuses)
    {
        for (size_t columns = 0; columns < 120; ++columns)
        {
            for (const bool unicode : {false, true})
            {
                const std::string line = RenderProgressLine(View(77, status), {columns, unicode, false});
                EXPECT_LT(TerminalWidth(line), std::max<size_t>(columns, 1)) << columns << line;
                EXPECT_EQ(line.find('\x1B'), line.npos);
            }
        }
    }
}

TEST(ProgressLine, CutsBetweenCharactersAndSaysSo)
{
    EXPECT_EQ(CutToWidth(u"漢字漢字", 6, true), u"漢字…");
    EXPECT_EQ(CutToWidth(u"漢字漢字", 8, true), u"漢字漢字");
    EXPECT_EQ(CutToWidth(u"abcdef", 5, false), u"ab...");
    EXPECT_EQ(CutToWidth(u"abcdef", 2, false), u"..");
}

TEST(ProgressLine, ColourTellsTheState)
{
    ProgressView view = View(100, "x");
    const LineStyle style{40, false, true};
    EXPECT_THAT(RenderProgressLine(view, style), StartsWith("\x1b[32m"));
    view.state = BarState::Error;
    EXPECT_THAT(RenderProgressLine(view, style), StartsWith("\x1b[31m"));
    view.state = BarState::Paused;
    EXPECT_THAT(RenderProgressLine(view, style), StartsWith("\x1b[33m"));
}
