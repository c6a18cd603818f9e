#include "ui/WaitingAnimation.h"

UINT32 WaitingAnimation::FrameAt(UINT32 tick, UINT32 frames) noexcept
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
