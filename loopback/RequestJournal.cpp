#include "loopback/RequestJournal.h"

namespace loopback
{

namespace
{

constexpr std::size_t Length = 1000;

}

void RequestJournal::Add(const JournalEntry &entry)
{
    std::lock_guard lock(m_mutex);
    m_entries.push_back(entry);
    if (m_entries.size() > Length)
    {
        m_entries.pop_front();
    }
}

void RequestJournal::Clear()
{
    std::lock_guard lock(m_mutex);
    m_entries.clear();
}

std::vector<JournalEntry> RequestJournal::Entries() const
{
    std::lock_guard lock(m_mutex);
    return {m_entries.begin(), m_entries.end()};
}

} // namespace loopback
