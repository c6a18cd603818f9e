// The last requests, for whoever wants to know what a client really sent. Thread-safe.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace loopback
{

struct JournalEntry
{
    std::uint64_t connection = 0;
    bool secure = false;
    std::string httpMethod;
    std::string host;
    std::string path;
    // Of a REST call: its "method".
    std::string apiMethod;
    std::string userAgent;
    std::string contentType;
    std::string contentLength;
    std::string expect;
    // The fault that was played, or empty.
    std::string fault;
    int status = 0;
    // The whole reply was handed over; not when the connection was cut instead.
    bool answered = false;
};

class RequestJournal
{
public:
    void Add(const JournalEntry &entry);
    void Clear();
    std::vector<JournalEntry> Entries() const;

private:
    mutable std::mutex m_mutex;
    std::deque<JournalEntry> m_entries;
};

} // namespace loopback
