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
    m_started = false;
    m_totalUnits = m_startTime = m_doneUnits = m_sampleCount = 0;
    m_rateSamples.fill(0);
}

void PublishStatistics::Start(UINT64 totalUnits, UINT64 now)
{
    const std::lock_guard guard(m_lock);
    m_totalUnits = totalUnits;
    m_startTime = now;
    m_started = true;
}

void PublishStatistics::AddDoneUnits(UINT32 delta)
{
    const std::lock_guard guard(m_lock);
    if (m_doneUnits < MostDoneUnits && MostDoneUnits - m_doneUnits >= delta)
    {
        m_doneUnits += delta;
    }
}

UINT64 PublishStatistics::TotalUnits() const
{
    const std::lock_guard guard(m_lock);
    return m_totalUnits;
}

UINT64 PublishStatistics::DoneUnits() const
{
    const std::lock_guard guard(m_lock);
    return m_doneUnits;
}

UINT64 PublishStatistics::RemainingTime(UINT64 now)
{
    const std::lock_guard guard(m_lock);
    const double elapsed = m_started ? static_cast<double>(static_cast<INT64>(now - m_startTime)) * 1e-7 : 0.0;
    const double rate = elapsed != 0 ? static_cast<double>(m_doneUnits) / elapsed : 0.0;
    if (rate != std::numeric_limits<double>::max())
    {
        m_rateSamples[m_sampleCount % m_rateSamples.size()] = rate;
        ++m_sampleCount;
    }
    const double mean = MeanRate();
    if (mean == 0)
    {
        return NoEstimate;
    }
    const double left = (static_cast<double>(m_totalUnits) - static_cast<double>(m_doneUnits)) / mean;
    // Not positive if the clock was set back or more was done than the total: nothing is left then. A time
    // that doesn't fit into ticks is no estimate.
    if (!(left > 0))
    {
        return 0;
    }
    if (left >= static_cast<double>(NoEstimate / TicksPerSecond))
    {
        return NoEstimate;
    }
    return static_cast<UINT64>(left) * TicksPerSecond;
}

double PublishStatistics::MeanRate() const
{
    const auto count = static_cast<size_t>(std::min<UINT64>(m_sampleCount, m_rateSamples.size()));
    if (count == 0)
    {
        return 0;
    }
    return std::accumulate(m_rateSamples.begin(), m_rateSamples.begin() + count, 0.0) / static_cast<double>(count);
}
