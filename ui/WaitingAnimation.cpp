#include "ui/WaitingAnimation.h"

UINT32 WaitingAnimation::FrameAt(UINT32 tick, UINT32 frames) noexcept
{
    // The paint of a stop shows the first frame and leaves the restart to the next start.
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
