// What follows a run of the plug-in that ended before it had tried every item.
#pragma once

#include "host/RunRecord.h"

#include <chrono>
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
