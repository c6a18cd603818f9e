#include "loopback/StoreLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <stdexcept>

namespace loopback
{

StoreLock::StoreLock(const std::filesystem::path &store)
    : m_file(open((store / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_file < 0)
    {
        throw std::runtime_error("can't write to the store " + store.string());
    }
    if (flock(m_file, LOCK_EX | LOCK_NB) != 0)
    {
        close(m_file);
        throw std::runtime_error("another process is using the store " + store.string());
    }
}

StoreLock::~StoreLock()
{
    close(m_file);
}

} // namespace loopback
