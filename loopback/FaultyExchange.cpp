#include "loopback/FaultyExchange.h"

namespace loopback
{

bool FaultyExchange::ReadBody(const BodySink &sink)
{
    m_begin = std::chrono::steady_clock::now();
    if (!BeforeBytes(0))
    {
        return false;
    }
    return m_exchange.ReadBody([&](std::string_view bytes) {
        return BeforeBytes(static_cast<std::int64_t>(bytes.size())) && sink(bytes);
    });
}

bool FaultyExchange::BeforeBytes(std::int64_t count)
{
    using namespace std::chrono;
    m_read += count;
    if (m_fault.kind == FaultKind::Cut && m_read >= m_fault.after)
    {
        Drop(ConnectionEnd::Reset);
        return false;
    }
    if (m_fault.kind == FaultKind::Stall && !m_hasStalled && m_read >= m_fault.after)
    {
        m_hasStalled = true;
        return Pause(milliseconds(m_fault.milliseconds));
    }
    if (m_fault.kind == FaultKind::Slow)
    {
        const auto due = m_begin + milliseconds(m_read * 1000 / m_fault.bytesPerSecond);
        const auto early = ceil<milliseconds>(due - steady_clock::now());
        return early.count() <= 0 || Pause(early);
    }
    return true;
}

} // namespace loopback
