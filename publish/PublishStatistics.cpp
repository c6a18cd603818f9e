#include "publish/PublishStatistics.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace
{
constexpr UINT64 MostDoneUnits = 0xFFFFFFFF;
}

UINT64 SystemTicks() noexcept
{
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    return UINT64{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

void PublishStatistics::Reset()
{
    const std::lock_guard guard(m_lock);
    m_run = Run();
}

void PublishStatistics::Start(UINT64 totalUnits, UINT64 now)
{
    const std::lock_guard guard(m_lock);
    m_run.TotalUnits = totalUnits;
    m_run.StartTime = now;
}

void PublishStatistics::AddDoneUnits(UINT32 delta)
{
    const std::lock_guard guard(m_lock);
    if (m_run.DoneUnits < MostDoneUnits && MostDoneUnits - m_run.DoneUnits >= delta)
    {
        m_run.DoneUnits += delta;
    }
}

UINT64 PublishStatistics::TotalUnits() const
{
    const std::lock_guard guard(m_lock);
    return m_run.TotalUnits;
}

UINT64 PublishStatistics::DoneUnits() const
{
    const std::lock_guard guard(m_lock);
    return m_run.DoneUnits;
}

UINT64 PublishStatistics::RemainingTime(UINT64 now)
{
    const std::lock_guard guard(m_lock);
    const double elapsed =
        m_run.StartTime ? static_cast<double>(static_cast<INT64>(now - *m_run.StartTime)) * 1e-7 : 0.0;
    const double rate = elapsed != 0 ? static_cast<double>(m_run.DoneUnits) / elapsed : 0.0;
    if (rate != std::numeric_limits<double>::max())
    {
        m_run.RateSamples[m_run.SampleCount % m_run.RateSamples.size()] = rate;
        ++m_run.SampleCount;
    }
    const double mean = MeanRate();
    if (mean == 0)
    {
        return NoEstimate;
    }
    const double left = (static_cast<double>(m_run.TotalUnits) - static_cast<double>(m_run.DoneUnits)) / mean;
    // Not positive if the clock was set back or more was done than the total: nothing is left then. A time
    // that doesn't fit into ticks is no estimate.
    if (!(left > 0))
    {
        return 0;
    }
    if (left >= static_cast<double>(NoEstimate) / TicksPerSecond)
    {
        return NoEstimate;
    }
    return static_cast<UINT64>(left) * TicksPerSecond;
}

double PublishStatistics::MeanRate() const
{
    const auto count = static_cast<size_t>(std::min<UINT64>(m_run.SampleCount, m_run.RateSamples.size()));
    if (count == 0)
    {
        return 0;
    }
    return std::accumulate(m_run.RateSamples.begin(), m_run.RateSamples.begin() + count, 0.0) /
           static_cast<double>(count);
}
