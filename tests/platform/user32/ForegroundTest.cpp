#include "tests/platform/KnownGaps.h"

#include <gmock/gmock.h>

namespace
{
// Wine takes every wish for granted.
TEST(Foreground, IsNotTheProcesssToGiveOrLock)
{
    SetLastError(0);
    EXPECT_EQ(underWine, AllowSetForegroundWindow(ASFW_ANY) != FALSE);
    EXPECT_EQ(underWine ? 0 : DWORD{ERROR_ACCESS_DENIED}, GetLastError());
    for (const UINT code : {LSFW_LOCK, LSFW_UNLOCK})
    {
        EXPECT_EQ(underWine, LockSetForegroundWindow(code) != FALSE);
    }
    if (!underWine)
    {
        EXPECT_FALSE(LockSetForegroundWindow(7));
        EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, GetLastError());
    }
}
} // namespace
