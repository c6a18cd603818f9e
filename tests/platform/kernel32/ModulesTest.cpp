#include "com/WideText.h"
#include "tests/platform/KnownGaps.h"

#include <windows.h>

#include <gtest/gtest.h>

extern "C"
#ifdef __MINGW32__
    __declspec(dllexport)
#else
    __attribute__((visibility("default")))
#endif
        int ExportedForTheTest()
{
    return 7;
}

namespace
{
TEST(Modules, TheFileNameIsCutAndReportedIfTheBufferIsSmall)
{
    WCHAR path[1024];
    const DWORD length = GetModuleFileNameW(nullptr, path, ARRAYSIZE(path));
    ASSERT_GT(length, 10u);
    const WideText whole(path, length);
    EXPECT_NE(whole.find(TEXT("platform_kernel32_tests")), WideText::npos);
    EXPECT_EQ(path[length], 0);

    WCHAR brief[10];
    SetLastError(0);
    EXPECT_EQ(GetModuleFileNameW(nullptr, brief, ARRAYSIZE(brief)), ARRAYSIZE(brief));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(WideText(brief, ARRAYSIZE(brief) - 1), whole.substr(0, ARRAYSIZE(brief) - 1));
    // Windows terminates a path that it cuts, Wine doesn't.
    EXPECT_EQ(brief[ARRAYSIZE(brief) - 1], UnderWine ? whole[ARRAYSIZE(brief) - 1] : 0);
}

TEST(Modules, ExportedFunctionsAreFoundInTheirOwnModuleOnly)
{
    const HMODULE program = GetModuleHandleW(nullptr);
    const auto found =
        reinterpret_cast<int (*)()>(reinterpret_cast<void *>(GetProcAddress(program, "ExportedForTheTest")));
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found(), 7);
    SetLastError(0);
    EXPECT_EQ(GetProcAddress(program, "CoCreateInstance"), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
}
} // namespace
