// Which frame of the waiting animation shows: chosen from the time passed, so that a late timer doesn't
// slow it down and two paints at one moment show the same frame.
#pragma once

#include <windows.h>

struct WaitingAnimation
{
    UINT64 StartTick = 0;  // of the first frame; 0: not started
    UINT32 Interval = 125; // milliseconds per frame
    bool Restart = false;  // the next frame that is asked for begins the count anew
    bool Running = false;

    // The frame at this value of the tick counter, of so many; 0 as long as it isn't running. A counter
    // that has wrapped begins the count anew.
    UINT32 FrameAt(UINT32 tick, UINT32 frames) noexcept;
};
