#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
TEST(MemoryBlocks, AreReachedThroughTheirLock)
{
    for (const UINT flags : {GHND, GPTR})
    {
        const HGLOBAL handle = GlobalAlloc(flags, 16);
        ASSERT_NE(handle, nullptr);
        auto *const bytes = static_cast<BYTE *>(GlobalLock(handle));
        ASSERT_NE(bytes, nullptr);
        EXPECT_EQ(bytes == handle, flags == GPTR);
        EXPECT_TRUE(std::all_of(bytes, bytes + 16, [](BYTE b) { return b == 0; }));
        SetLastError(1);
        EXPECT_TRUE(GlobalUnlock(handle) || GetLastError() == NO_ERROR);
        EXPECT_EQ(GlobalFree(handle), nullptr);
    }
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    EXPECT_EQ(LocalFree(nullptr), nullptr);
}
} // namespace
