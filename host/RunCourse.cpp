#include "host/RunCourse.h"

#include <algorithm>

NextRun NextRunAfter(const RunRecord &record, bool keepsTrying)
{
    const auto last = record.LastTried();
    if (last && keepsTrying && record.FailuresToConnect() > 0)
    {
        return NextRun::AfterPause;
    }
    const bool isRefusalOfFile = last && IsRefusalOfFile(ServiceCode(record.LastErrorOf(*last)));
    return isRefusalOfFile && !record.NotTried().empty() ? NextRun::Rest : NextRun::None;
}

std::chrono::seconds GrowingPause::Next(size_t item)
{
    constexpr std::chrono::seconds first(5);
    constexpr std::chrono::seconds longest(600);
    m_pause = m_item == item ? std::min(m_pause * 2, longest) : first;
    m_item = item;
    return m_pause;
}

void CancellablePause::Wait(std::chrono::seconds time)
{
    std::unique_lock guard(m_lock);
    m_cancelling.wait_for(guard, time, [this] { return m_isCancelled; });
}

void CancellablePause::Cancel()
{
    const std::lock_guard guard(m_lock);
    m_isCancelled = true;
    m_cancelling.notify_all();
}
