// Reads a request's body as a fault demands: cut off, stalled or slowly.
#pragma once

#include "loopback/FaultQueue.h"
#include "loopback/HttpMessages.h"

namespace loopback
{

class FaultyExchange final : public HttpExchange
{
public:
    FaultyExchange(HttpExchange &exchange, const Fault &fault) : m_exchange(exchange), m_fault(fault) {}

    const HttpRequest &Request() const override { return m_exchange.Request(); }
    bool ReadBody(const BodySink &sink) override;
    bool Pause(std::chrono::milliseconds duration) override { return m_exchange.Pause(duration); }
    void Drop(ConnectionEnd end) override { m_exchange.Drop(end); }

private:
    bool BeforeBytes(std::int64_t count);

    HttpExchange &m_exchange;
    const Fault &m_fault;
    std::int64_t m_read = 0;
    bool m_hasStalled = false;
    std::chrono::steady_clock::time_point m_begin;
};

} // namespace loopback
