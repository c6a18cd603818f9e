// What follows a run of the plug-in that ended before it had tried every item.
#pragma once

#include "host/RunRecord.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

enum class NextRun
{
    None,
    Rest,      // the service refused one file, and the plug-in ended its run: the items that it didn't try
    AfterPause // no connection: the last item again, and the rest, after a pause
};

// The record of a run that is over and wasn't cancelled.
NextRun NextRunAfter(const RunRecord &record, bool keepsTrying);

// The pauses between attempts to connect: each twice as long as the one before, for as long as it is the same item.
class GrowingPause
{
public:
    std::chrono::seconds Next(size_t item);

private:
    std::optional<size_t> m_item;
    std::chrono::seconds m_pause{};
};

// The pause that the service asks for within a run. Thread-safe: one thread waits, another cancels.
class CancellablePause
{
public:
    // Returns when the time is over, or at once when the pause is or was cancelled.
    void Wait(std::chrono::seconds time);
    void Cancel();

private:
    std::mutex m_lock;
    std::condition_variable m_cancelling;
    bool m_isCancelled = false;
};
