#include <windows.h>

#include <gtest/gtest.h>

TEST(SystemVersion, IsAtLeast61)
{
    OSVERSIONINFOEXW information{};
    information.dwOSVersionInfoSize = sizeof information;
    ASSERT_TRUE(GetVersionExW(reinterpret_cast<OSVERSIONINFOW *>(&information)));
    EXPECT_GE(information.dwMajorVersion * 100 + information.dwMinorVersion, 601u);
    EXPECT_GE(information.dwBuildNumber, 7600u);
    EXPECT_EQ(information.dwPlatformId, DWORD{VER_PLATFORM_WIN32_NT});

    OSVERSIONINFOW odd{};
    odd.dwOSVersionInfoSize = 12;
    EXPECT_FALSE(GetVersionExW(&odd));
}
