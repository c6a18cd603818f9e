#include "tests/platform/KnownGaps.h"

#include <shellapi.h>

#include <gmock/gmock.h>

namespace
{
TEST(ShellExecute, RefusesWhatNobodyOpens)
{
    const struct
    {
        const WCHAR *verb, *file;
    } cases[] = {
        {TEXT("open"), TEXT("no-such-scheme-at-all:something")},
        {TEXT("no such verb"), TEXT("no-such-scheme-at-all:something")},
        {nullptr, TEXT("/no/such/file.anywhere")},
    };
    for (const auto &c : cases)
    {
        const auto result =
            reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, c.verb, c.file, nullptr, nullptr, SW_SHOWNORMAL));
        EXPECT_GE(result, 0);
        EXPECT_LE(result, 32);
    }
}
} // namespace
