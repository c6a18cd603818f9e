// Cost of what the plug-in does beside the network: a progress report, a state line, one item of a
// run with web components that answer at once.
#include "core/NumberFormat.h"
#include "plugin/FlickrPublisher.h"
#include "publish/ProgressReport.h"
#include "settings/StateLine.h"
#include "tests/doubles/PublishWorld.h"

#include <benchmark/benchmark.h>

namespace
{
// Windows and estimator of a run of 40 items.
struct ProgressScene
{
    CallRecord record;
    FakeProgressWindows fakes{record};
    ProgressWindows windows{fakes.Bar(), fakes.StatusText()};
    PublishStatistics statistics;
    LocaleNumberFormat numbers;
    ProgressDisplay display{windows, statistics, numbers, SystemTicks};

    ProgressScene() { statistics.Start(40 * UnitsPerItem, SystemTicks()); }
};

// A report that moves the bar by a percent and writes the status line.
void ProgressReportOfAPercent(benchmark::State &state)
{
    ProgressScene scene;
    UINT32 done = 0;
    for (auto _ : state)
    {
        done = done % 100 + 1;
        ShowProgress(scene.display, UPLOAD_BYTES, 100, done);
    }
}
BENCHMARK(ProgressReportOfAPercent);

// The usual report: the whole percentage is the same as before.
void ProgressReportWithinAPercent(benchmark::State &state)
{
    ProgressScene scene;
    ShowProgress(scene.display, UPLOAD_BYTES, 1000000, 500000);
    for (auto _ : state)
    {
        ShowProgress(scene.display, UPLOAD_BYTES, 1000000, 500001);
    }
}
BENCHMARK(ProgressReportWithinAPercent);

void StateLine(benchmark::State &state)
{
    SettingsKey key;
    AccountRecord account;
    account.OAuthToken = BstrOwner(TEXT("t"));
    account.OAuthTokenSecret = BstrOwner(TEXT("s"));
    SettingsBlock settings;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(ComposeDisplayState(account, settings));
    }
}
BENCHMARK(StateLine);

// A whole run of one picture, its signature, form and reply included, without a network.
void OneItem(benchmark::State &state)
{
    PublishWorld world;
    world.AddItem("one", TEXT("jpg"), JpegBytes);
    auto plugin = CFlickrPublisher::Make();
    if (FAILED(plugin->Initialize(world.Host.Get(), 1033, static_cast<IStream *>(world.Stream.Get()), 0)))
    {
        state.SkipWithError("the plug-in could not be initialised");
        return;
    }
    for (auto _ : state)
    {
        state.PauseTiming();
        world.Web.ForgetCalls();
        world.Web.FileParts.clear();
        world.Web.Bodies.clear();
        world.Web.Answer(OkReply);
        state.ResumeTiming();
        plugin->Publish(world.Windows.Bar(), world.Windows.StatusText());
    }
    if (!world.Record.LinesOf("log error ").empty())
    {
        state.SkipWithError("an item failed");
    }
}
BENCHMARK(OneItem);
} // namespace

int main(int argc, char **argv)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    CoUninitialize();
    return 0;
}
