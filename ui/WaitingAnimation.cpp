#include "ui/WaitingAnimation.h"

UINT32 WaitingAnimation::FrameAt(UINT32 tick, UINT32 frames) noexcept
{
    // Stop paints once; that paint must not use up Restart, which is for the next start.
    if (!Running || frames == 0)
    {
        return 0;
    }
    if (Restart)
    {
        Restart = false;
        StartTick = 0;
    }
    if (StartTick == 0 || tick < StartTick)
    {
        StartTick = tick;
    }
    return static_cast<UINT32>((tick - StartTick) / Interval % frames);
}
