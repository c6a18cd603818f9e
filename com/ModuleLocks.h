// Count of what keeps this module loaded: live objects, class factories held from outside, and
// explicit locks. Each module has a count of its own.
#pragma once

#include <atomic>

namespace ModuleLocks
{
inline std::atomic<long> count{0};

inline void Increment() noexcept
{
    count.fetch_add(1, std::memory_order_relaxed);
}
inline void Decrement() noexcept
{
    count.fetch_sub(1, std::memory_order_acq_rel);
}
inline long Read() noexcept
{
    return count.load(std::memory_order_acquire);
}
} // namespace ModuleLocks

// Holds one lock for as long as it lives.
class ModuleLock
{
public:
    ModuleLock() noexcept { ModuleLocks::Increment(); }
    ~ModuleLock() { ModuleLocks::Decrement(); }
    ModuleLock(const ModuleLock &) = delete;
    ModuleLock &operator=(const ModuleLock &) = delete;
};
