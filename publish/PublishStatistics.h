// Progress of one run, in units of which each item is worth 100, and the estimate of the time that
// the run still takes. All times are FILETIME ticks of 100 ns. Any thread.
#pragma once

#include <windows.h>

#include <array>
#include <mutex>

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
    // Everything back to zero: a run that has not started.
    void Reset();

    // The run begins now with so many units to do.
    void Start(UINT64 totalUnits, UINT64 now);

    // A sum that would pass 32 bits is left alone, as it is by a delta that came of going backwards.
    void AddDoneUnits(UINT32 delta);

    UINT64 TotalUnits() const;
    UINT64 DoneUnits() const;

    // Takes a sample of the rate since the run's start and gives the ticks left by the mean of the
    // last samples: whole seconds, or NoEstimate while nothing has been done.
    UINT64 RemainingTime(UINT64 now);

private:
    double MeanRate() const;

    bool m_started = false;
    UINT64 m_totalUnits = 0;
    UINT64 m_startTime = 0;
    UINT64 m_doneUnits = 0;
    mutable std::mutex m_lock;
    UINT64 m_sampleCount = 0;
    std::array<double, 25> m_rateSamples{};
};
