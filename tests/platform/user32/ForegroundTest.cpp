#include "tests/platform/KnownGaps.h"

#include <gmock/gmock.h>

namespace
{
// Wine lets both functions succeed.
TEST(Foreground, IsNotTheProcesssToGiveOrLock)
{
    SetLastError(0);
    EXPECT_EQ(UnderWine, AllowSetForegroundWindow(ASFW_ANY) != FALSE);
    EXPECT_EQ(UnderWine ? 0 : DWORD{ERROR_ACCESS_DENIED}, GetLastError());
    for (const UINT code : {LSFW_LOCK, LSFW_UNLOCK})
    {
        EXPECT_EQ(UnderWine, LockSetForegroundWindow(code) != FALSE);
    }
    if (!UnderWine)
    {
        EXPECT_FALSE(LockSetForegroundWindow(7));
        EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, GetLastError());
    }
}
} // namespace
