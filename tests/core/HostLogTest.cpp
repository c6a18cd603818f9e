#include "core/HostLog.h"
#include "tests/doubles/FakeHost.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(HostLog, WritesEachLevelWithItsArguments)
{
    CallRecord record;
    const auto host = FakeHost::Make(record);
    LogVerbose(host.Get(), TEXT("%ls %d"), TEXT("a"), 1);
    LogInfo(host.Get(), TEXT("%ls %d"), TEXT("b"), 2);
    LogWarning(host.Get(), TEXT("%ls %d"), TEXT("c"), 3);
    LogError(host.Get(), TEXT("%ls %d"), TEXT("d"), 4);
    LogFatal(host.Get(), TEXT("%ls %d"), TEXT("e"), 5);
    EXPECT_THAT(record.Lines(), ElementsAre("log verbose a 1", "log info b 2", "log warning c 3", "log error d 4",
                                            "log fatal e 5"));
}

TEST(HostLog, NeedsNeitherHostNorFormat)
{
    CallRecord record;
    LogError(nullptr, TEXT("%ls"), TEXT("nobody hears"));
    LogError(FakeHost::Make(record).Get(), nullptr);
    EXPECT_THAT(record.Lines(), ElementsAre("log error (internal error)"));
}
