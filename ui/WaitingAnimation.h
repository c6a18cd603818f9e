// Chooses the frame of the waiting animation from the time passed, not by counting timer ticks, so that a late
// timer doesn't slow it down and two paints at one moment show the same frame.
#pragma once

#include <windows.h>

struct WaitingAnimation
{
    UINT64 startTick = 0;  // tick counter at the first frame; 0 = not started
    UINT32 interval = 125; // milliseconds per frame
    bool restart = false;  // FrameAt begins the count anew
    bool running = false;

    // The frame, from 0 to frames - 1, at this value of the tick counter; 0 while it isn't running. When the
    // counter has wrapped, the count begins anew.
    UINT32 FrameAt(UINT32 tick, UINT32 frames) noexcept;
};

inline UINT32 WaitingAnimation::FrameAt(UINT32 tick, UINT32 frames) noexcept
{
    // Stop paints once; that paint must not use up restart, which is for the next start.
    if (!running || frames == 0)
    {
        return 0;
    }
    if (restart)
    {
        restart = false;
        startTick = 0;
    }
    if (startTick == 0 || tick < startTick)
    {
        startTick = tick;
    }
    return static_cast<UINT32>((tick - startTick) / interval % frames);
}
