// The last requests, for tests and users who want to see what a client really sent. Thread-safe.
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
    // The "method" of a REST call.
    std::string apiMethod;
    std::string userAgent;
    std::string contentType;
    std::string contentLength;
    std::string expect;
    // The fault that was applied, or empty.
    std::string fault;
    int status = 0;
    // Whether the whole reply was sent; false if the connection was cut instead.
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
