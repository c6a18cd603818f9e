#include "publish/PublishStatistics.h"
#include "publish/TimeLeft.h"
#include "tests/doubles/CallRecord.h"

#include <gtest/gtest.h>

namespace
{
constexpr UINT64 Seconds(UINT64 count)
{
    return count * TicksPerSecond;
}
constexpr UINT64 Minute = 60;
constexpr UINT64 Hour = 60 * Minute;
constexpr UINT64 Day = 24 * Hour;
} // namespace

TEST(TimeText, NamesAtMostTwoUnits)
{
    const struct
    {
        UINT64 seconds;
        const char *text;
    } cases[] = {
        {0, "less than one minute"},
        {59, "less than one minute"},
        {Minute + 59, "less than one minute"},
        {2 * Minute, "2 minutes"},
        {2 * Minute + 1, "2 minutes, 5 seconds"},
        {3 * Minute + 2, "3 minutes, 5 seconds"},
        {3 * Minute + 5, "3 minutes, 5 seconds"},
        {3 * Minute + 6, "3 minutes, 10 seconds"},
        {3 * Minute + 55, "3 minutes, 55 seconds"},
        {3 * Minute + 57, "3 minutes, 59 seconds"},
        {4 * Minute + 59, "4 minutes, 59 seconds"},
        {5 * Minute, "5 minutes"},
        {5 * Minute + 30, "5 minutes"},
        {59 * Minute + 59, "59 minutes"},
        {Hour, "1 hour"},
        {Hour + 59, "1 hour"},
        {Hour + Minute, "1 hour, 1 minute"},
        {23 * Hour + 2 * Minute, "23 hours, 2 minutes"},
        {Day, "1 day"},
        {Day + 59 * Minute, "1 day"},
        {Day + Hour, "1 day, 1 hour"},
        {12 * Day + 3 * Hour + 5 * Minute, "12 days, 3 hours"},
    };
    for (const auto &c : cases)
    {
        EXPECT_EQ(Narrow(TimeText(Seconds(c.seconds))), c.text) << c.seconds;
    }
    EXPECT_EQ(Narrow(TimeText(NoEstimate)), "less than one minute");
}

// The fewest units with which the estimate shows.
TEST(EstimateMayShow, FromAShareOfShortRunsAndANumberOfItemsOfLongOnes)
{
    const struct
    {
        UINT64 count;
        UINT64 units;
    } cases[] = {
        {1, 75},         {2, 2 * 75},      {3, 3 * 74},        {16, 16 * 63},  {29, 29 * 51},
        {30, 30 * 50},   {31, 15 * 100},   {57, 15 * 100},     {58, 16 * 100}, {500, 31 * 100},
        {999, 49 * 100}, {1000, 50 * 100}, {100000, 50 * 100},
    };
    for (const auto &c : cases)
    {
        EXPECT_TRUE(EstimateMayShow(c.count, c.units)) << c.count;
        EXPECT_FALSE(EstimateMayShow(c.count, c.units - 1)) << c.count;
    }
}

TEST(StatusLine, CountsItemsFromTwoOn)
{
    const auto line = [](UINT64 count, UINT64 units, UINT64 ticks) {
        return Narrow(StatusLine(count, units, ticks, TEXT("1,234"), TEXT("56")));
    };
    EXPECT_EQ(line(0, 0, 0), "Estimating remaining time...");
    EXPECT_EQ(line(1, 74, Seconds(9)), "Estimating remaining time...");
    EXPECT_EQ(line(1, 75, Seconds(9)), "Estimated time left: less than one minute.");
    EXPECT_EQ(line(2, 0, NoEstimate), "Published 56 of 1,234 items. Estimating remaining time...");
    EXPECT_EQ(line(2, 150, Seconds(2 * Hour)), "Published 56 of 1,234 items. Estimated time left: 2 hours.");
}

TEST(PublishStatistics, EstimatesByTheMeanOfTheRatesSinceTheStart)
{
    PublishStatistics statistics;
    EXPECT_EQ(statistics.RemainingTime(Seconds(5)), NoEstimate) << "before the run";
    EXPECT_GT(SystemTicks(), 400 * 365 * Seconds(Day)) << "the clock counts from the year 1601";
    statistics.Reset();
    statistics.Start(200, Seconds(1000));
    EXPECT_EQ(statistics.RemainingTime(Seconds(1000)), NoEstimate) << "no time has passed";

    statistics.AddDoneUnits(10);
    // Samples 0 and 10 / 2 = 5: mean 2.5 units a second, 190 to go.
    EXPECT_EQ(statistics.RemainingTime(Seconds(1002)), Seconds(76));
    statistics.AddDoneUnits(20);
    // 30 / 4 = 7.5; mean (0 + 5 + 7.5) / 3; 170 / 4.1666 = 40.8, cut to whole seconds.
    EXPECT_EQ(statistics.RemainingTime(Seconds(1004)), Seconds(40));

    statistics.Reset();
    EXPECT_EQ(statistics.DoneUnits(), 0u);
    EXPECT_EQ(statistics.TotalUnits(), 0u);
    statistics.Start(100, Seconds(2000));
    statistics.AddDoneUnits(50);
    EXPECT_EQ(statistics.RemainingTime(Seconds(2010)), Seconds(10)) << "samples of an earlier run are gone";
}

TEST(PublishStatistics, ForgetsSamplesBeyondTheLast25)
{
    PublishStatistics statistics;
    statistics.Start(1000, 0);
    statistics.AddDoneUnits(100);
    statistics.RemainingTime(Seconds(1)); // 100 units a second, once
    for (int i = 0; i < 24; ++i)
    {
        statistics.RemainingTime(Seconds(100)); // 1 unit a second
    }
    EXPECT_EQ(statistics.RemainingTime(Seconds(100)), Seconds(900)) << "the 26th sample replaces the first";
}

TEST(PublishStatistics, KeepsDoneUnitsWithin32Bits)
{
    PublishStatistics statistics;
    statistics.Start(200, 0);
    statistics.AddDoneUnits(60);
    statistics.AddDoneUnits(static_cast<UINT32>(-20));
    EXPECT_EQ(statistics.DoneUnits(), 60u) << "a step back";
    statistics.AddDoneUnits(0xFFFFFFFF - 60);
    EXPECT_EQ(statistics.DoneUnits(), 0xFFFFFFFFu);
    statistics.AddDoneUnits(0);
    statistics.AddDoneUnits(1);
    EXPECT_EQ(statistics.DoneUnits(), 0xFFFFFFFFu);
}
