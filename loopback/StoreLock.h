// One process to a store.
#pragma once

#include <filesystem>

namespace loopback
{

class StoreLock
{
public:
    // Throws std::runtime_error when another process has the store.
    explicit StoreLock(const std::filesystem::path &store);
    ~StoreLock();
    StoreLock(const StoreLock &) = delete;
    StoreLock &operator=(const StoreLock &) = delete;

private:
    int m_file;
};

} // namespace loopback
