#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
TEST(MemoryBlocks, MovableMemoryIsLockedAndCounted)
{
    const HGLOBAL handle = GlobalAlloc(GHND, 16);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(GlobalSize(handle), 16u);
    auto *const bytes = static_cast<BYTE *>(GlobalLock(handle));
    ASSERT_NE(bytes, nullptr);
    EXPECT_TRUE(std::all_of(bytes, bytes + 16, [](BYTE b) { return b == 0; }));
    EXPECT_EQ(GlobalLock(handle), bytes);
    EXPECT_TRUE(GlobalUnlock(handle));
    SetLastError(1);
    EXPECT_FALSE(GlobalUnlock(handle));
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    EXPECT_FALSE(GlobalUnlock(handle));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_LOCKED});
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST(MemoryBlocks, FixedMemoryIsItsOwnHandle)
{
    const HGLOBAL handle = GlobalAlloc(GPTR, 8);
    EXPECT_EQ(GlobalLock(handle), handle);
    EXPECT_TRUE(GlobalUnlock(handle));
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST(MemoryBlocks, GrowingKeepsContentAndZeroesTheRest)
{
    HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 4);
    std::fill_n(static_cast<BYTE *>(GlobalLock(handle)), 4, BYTE{9});
    GlobalUnlock(handle);
    handle = GlobalReAlloc(handle, 4096, GMEM_MOVEABLE | GMEM_ZEROINIT);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(GlobalSize(handle), 4096u);
    const auto *const bytes = static_cast<BYTE *>(GlobalLock(handle));
    EXPECT_EQ(std::count(bytes, bytes + 4, 9), 4);
    EXPECT_EQ(std::count(bytes + 4, bytes + 4096, 0), 4092);
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST(MemoryBlocks, AnEmptyMovableBlockCannotBeLocked)
{
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, 0);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(GlobalSize(handle), 0u);
    SetLastError(0);
    EXPECT_EQ(GlobalLock(handle), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DISCARDED});
    EXPECT_EQ(GlobalFree(handle), nullptr);
}

TEST(MemoryBlocks, ANullHandleCannotBeLockedAndMayBeFreed)
{
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    EXPECT_EQ(LocalFree(nullptr), nullptr);
}

TEST(MemoryBlocks, LocalMemoryIsZeroedOnRequest)
{
    auto *const bytes = static_cast<BYTE *>(LocalAlloc(LPTR, 64));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::count(bytes, bytes + 64, 0), 64);
    EXPECT_EQ(LocalFree(bytes), nullptr);
}
} // namespace
