// Lets only one process at a time use a store.
#pragma once

#include <filesystem>

namespace loopback
{

class StoreLock
{
public:
    // Throws std::runtime_error if another process uses the store.
    explicit StoreLock(const std::filesystem::path &store);
    ~StoreLock();
    StoreLock(const StoreLock &) = delete;
    StoreLock &operator=(const StoreLock &) = delete;

private:
    int m_file;
};

} // namespace loopback
