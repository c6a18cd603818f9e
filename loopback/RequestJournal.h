// The last requests, for tests and users who want to see what a client really sent. Thread-safe.
#pragma once

#include "loopback/Documents.h"

#include <nlohmann/json.hpp>

#include <deque>
#include <mutex>

namespace loopback
{

class RequestJournal
{
public:
    void Add(Json entry)
    {
        const std::lock_guard lock(m_mutex);
        m_entries.push_back(std::move(entry));
        if (m_entries.size() > Length)
        {
            m_entries.pop_front();
        }
    }

    // The oldest first.
    std::deque<Json> Entries() const
    {
        const std::lock_guard lock(m_mutex);
        return m_entries;
    }

private:
    static constexpr std::size_t Length = 1000;

    mutable std::mutex m_mutex;
    std::deque<Json> m_entries;
};

} // namespace loopback
