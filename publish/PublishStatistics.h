// Progress of one run, and the estimate of the time that it still takes. Work is counted in units of which
// each item has 100, so that a unit is a percent of one item's upload. All times are FILETIME ticks of 100 ns.
// Any thread.
//
// The estimate: each report gives a sample of the rate since the run's start (units done by seconds
// elapsed), and the last 25 samples are kept in a ring. The time left is the units left by the mean of the
// samples. Rates since the start change slowly, and their mean smooths them once more, so that the status
// line doesn't jump with each picture's size.
#pragma once

#include <windows.h>

#include <array>
#include <mutex>
#include <optional>

// The present time of the system, in ticks since 1601.
UINT64 SystemTicks() noexcept;

// Where the present time comes from.
using TickSource = UINT64 (*)();

constexpr UINT64 TicksPerSecond = 10'000'000;
constexpr UINT64 UnitsPerItem = 100;
constexpr UINT64 NoEstimate = ~UINT64{0};

class PublishStatistics
{
public:
    // Makes everything zero: no run has started.
    void Reset();

    // The run begins, with this many units to do.
    void Start(UINT64 totalUnits, UINT64 now);

    // Leaves the sum alone where it would pass 32 bits, which is also what a delta below zero does.
    void AddDoneUnits(UINT32 delta);

    UINT64 TotalUnits() const;
    UINT64 DoneUnits() const;

    // Takes a sample and returns the ticks left: whole seconds, or NoEstimate while nothing has been done.
    UINT64 RemainingTime(UINT64 now);

private:
    struct Run
    {
        std::optional<UINT64> StartTime;
        UINT64 TotalUnits = 0;
        UINT64 DoneUnits = 0;
        UINT64 SampleCount = 0;               // taken so far, also those that the ring has lost since
        std::array<double, 25> RateSamples{}; // a ring, in units per second
    };

    double MeanRate() const;

    mutable std::mutex m_lock;
    Run m_run;
};
