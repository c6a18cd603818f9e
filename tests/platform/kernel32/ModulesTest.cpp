#include "com/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

TEST(Modules, AFileNameIsWholeOrReportedAsCut)
{
    WCHAR path[1024];
    const DWORD length = GetModuleFileNameW(nullptr, path, ARRAYSIZE(path));
    EXPECT_NE(WideView(path, length).find(TEXT("platform_kernel32_tests")), WideView::npos);
    EXPECT_EQ(path[length], 0);
    for (const DWORD room : {DWORD{10}, length})
    {
        SetLastError(0);
        EXPECT_EQ(GetModuleFileNameW(nullptr, path, room), room);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    }
}
